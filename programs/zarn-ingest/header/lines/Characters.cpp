#include "zarn-ingest/header/lines/Characters.h"

#include <iconv.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): newlocale is POSIX's, not C's

#include <algorithm>
#include <array>
#include <functional>
#include <stdexcept>

namespace zarn::ingest {

namespace {

constexpr std::size_t TAB_STOP = 8;  // [columns]

bool isPrintable(char c) { return c >= ' ' && c <= '~'; }

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

/// Owns a conversion of the C library. It is made once: opening one reads files.
class Conversion {
public:
    Conversion(const char* to, const char* from) : handle_(::iconv_open(to, from)) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the C library's own word for failure
        if (handle_ == reinterpret_cast<iconv_t>(-1))
            throw std::runtime_error(std::string("no conversion from ") + from);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    ~Conversion() { ::iconv_close(handle_); }

    /// Converts a whole text; false where it is not of this encoding.
    bool operator()(std::string text, std::string& converted) {
        constexpr std::size_t MOST_FOR_ONE = 8;  // bytes that stand for one character
        std::string room(text.size() * MOST_FOR_ONE, '\0');
        char* in = text.data();
        char* out = room.data();
        std::size_t inLeft = text.size();
        std::size_t outLeft = room.size();
        ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        if (::iconv(handle_, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1))
            return false;
        converted = room.substr(0, room.size() - outLeft);
        return true;
    }

private:
    iconv_t handle_;
};

/// The locale whose nearest forms of letters the C library writes: in the plain one it knows none.
/// It holds for this thread, while the object lives. On a system without it letters have no form.
class FormsOfLetters {
public:
    FormsOfLetters() : locale_(shared()) {
        if (locale_ != nullptr) former_ = ::uselocale(locale_);
    }
    FormsOfLetters(const FormsOfLetters&) = delete;
    FormsOfLetters& operator=(const FormsOfLetters&) = delete;
    ~FormsOfLetters() {
        if (locale_ != nullptr) ::uselocale(former_);
    }

private:
    static locale_t shared() {
        static const locale_t made = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return made;
    }

    locale_t locale_;
    locale_t former_ = nullptr;
};

/// A character of UTF-8 in ASCII, "?" where it has no form there. Quotes become grave accents: a
/// straight one would end the text in which it stands.
std::string transliterated(const std::string& character) {
    const FormsOfLetters forms;
    static Conversion toAscii("ASCII//TRANSLIT", "UTF-8");
    std::string form;
    if (!toAscii(character, form)) return "?";
    std::replace(form.begin(), form.end(), '\'', '`');
    return form;
}

std::size_t lengthOfCharacter(const std::string& utf8, std::size_t at) {
    std::size_t end = at + 1;
    while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0U) == 0x80U) ++end;
    return end - at;
}

std::string asUtf8(const std::string& line) {
    static Conversion check("UTF-8", "UTF-8");
    static Conversion fromLatin("UTF-8", "ISO-8859-1");
    std::string utf8;
    if (!check(line, utf8)) fromLatin(line, utf8);
    return utf8;
}

std::string withoutLetters(const std::string& line, std::size_t number, Repairs& repairs) {
    const std::string utf8 = asUtf8(line);
    std::string ascii;
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t length = lengthOfCharacter(utf8, at);
        if (isAscii(utf8[at])) {
            ascii += utf8[at];
        } else {
            const std::string form = transliterated(utf8.substr(at, length));
            repairs[form == "?" ? Repair::LETTERS_WITHOUT_FORM : Repair::LETTERS].add(number);
            ascii += form;
        }
        at += length;
    }
    return ascii;
}

std::string withoutTabs(const std::string& line, std::size_t number, Repairs& repairs) {
    std::string text;
    for (const char c : line) {
        if (c != '\t') {
            text += c;
            continue;
        }
        repairs[Repair::TABS].add(number);
        text.resize((text.size() / TAB_STOP + 1) * TAB_STOP, ' ');
    }
    return text;
}

}  // namespace

std::string inAscii(std::string line, std::size_t number, Repairs& repairs) {
    // Nearly every line ends here; a pointer to the function would be called for each character.
    if (std::all_of(line.begin(), line.end(), [](char c) { return isPrintable(c); })) return line;
    const bool ascii = std::all_of(line.begin(), line.end(), isAscii);
    std::string text =
        withoutTabs(ascii ? line : withoutLetters(line, number, repairs), number, repairs);
    const auto controls = std::count_if(text.begin(), text.end(), std::not_fn(isPrintable));
    if (controls > 0) repairs[Repair::CONTROLS].add(number, static_cast<std::size_t>(controls));
    std::replace_if(text.begin(), text.end(), std::not_fn(isPrintable), ' ');
    return text;
}

}  // namespace zarn::ingest
