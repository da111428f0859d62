#include "zarn-moon/settings/Targets.h"

#include <zarnsys/util/StringUtils.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "shared/cli/BeginsWith.h"
#include "shared/cli/Printable.h"
#include "shared/cli/TextStreams.h"
#include "shared/cli/UsageError.h"
#include "shared/files/Reading.h"
#include "zarn-moon/settings/Fields.h"

namespace zarn::moon {

namespace {

const std::string BYTE_ORDER_MARK = "\xEF\xBB\xBF";

using Fields = std::vector<std::string>;

/// A title as it is compared: in small letters, with _ for blanks and dashes.
std::string keyOfTitle(const std::string& title) {
    std::string key = ZarnSys::lower(title);
    std::replace_if(
        key.begin(), key.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
    return key;
}

/// Where a title stands; the number of fields if nowhere.
std::size_t placeOfTitle(const Fields& titles, const std::string& name) {
    const auto found = std::find_if(titles.begin(), titles.end(), [&](const std::string& title) {
        return keyOfTitle(title) == name;
    });
    return static_cast<std::size_t>(found - titles.begin());
}

bool hasTitle(const Fields& titles, const std::string& name) {
    return placeOfTitle(titles, name) < titles.size();
}

/// Whether a line's fields are titles: two are called ra and dec, or the first one is called name
/// and there is no digit.
bool areTitles(const Fields& fields) {
    if (hasTitle(fields, "ra") && hasTitle(fields, "dec")) return true;
    return placeOfTitle(fields, "name") == 0 && fields.size() > 1 &&
           std::none_of(fields.begin(), fields.end(), [](const std::string& field) {
               return field.find_first_of("0123456789") != std::string::npos;
           });
}

/// How the lines of a file are read.
struct Layout {
    char separator = ',';
    Fields titles;  ///< empty: there is no line of titles
    std::size_t name = 0;
    std::size_t ra = 1;
    std::size_t dec = 2;

    bool isPosition(std::size_t i) const { return i == name || i == ra || i == dec; }
};

/// The position in a line's fields, in which blanks may stand within quotes.
Position positionIn(const Fields& fields, const Layout& layout) {
    return parsePosition(trimmed(fields[layout.ra]), trimmed(fields[layout.dec]));
}

/// Whether the first line of a file has titles or a target, taken apart at a separator.
bool readsWith(const std::string& line, char separator) {
    try {
        const Fields fields = fieldsOf(line, separator);
        if (areTitles(fields)) return true;
        const Layout layout;
        if (fields.size() <= layout.dec) return false;
        positionIn(fields, layout);
        return true;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

/// The separator that a file's first line reads with. If there is none, the one that comes most
/// often, so that messages say what is wrong with the fields.
char separatorOf(const std::string& line) {
    char most = ',';
    for (const char separator : {',', ';', '\t'}) {
        if (readsWith(line, separator)) return separator;
        if (std::count(line.begin(), line.end(), separator) >
            std::count(line.begin(), line.end(), most))
            most = separator;
    }
    return most;
}

Layout layoutOf(const std::string& line) {
    Layout layout;
    layout.separator = separatorOf(line);
    const Fields fields = fieldsOf(line, layout.separator);
    if (!areTitles(fields)) return layout;
    layout.titles = fields;
    if (!hasTitle(fields, "ra") || !hasTitle(fields, "dec")) return layout;
    if (!hasTitle(fields, "name")) throw std::invalid_argument("no column has the title name");
    layout.name = placeOfTitle(fields, "name");
    layout.ra = placeOfTitle(fields, "ra");
    layout.dec = placeOfTitle(fields, "dec");
    return layout;
}

/// The title of a column: its own, or its number if that is empty or another column's.
std::string titleOf(const Layout& layout, std::size_t i) {
    const auto begin = layout.titles.begin();
    const auto own = begin + static_cast<std::ptrdiff_t>(std::min(i, layout.titles.size()));
    const bool usable =
        own != layout.titles.end() && !own->empty() && std::find(begin, own, *own) == own;
    if (usable) return *own;
    std::string title = "column_" + std::to_string(i + 1);
    while (std::find(begin, layout.titles.end(), title) != layout.titles.end()) title += '_';
    return title;
}

/// The number in a column of this title; none if there is no such column or it is empty.
std::optional<double> numberIn(const Layout& layout, const Fields& parts, const std::string& title,
                               double most) {
    const std::size_t place = placeOfTitle(layout.titles, title);
    if (place >= std::min(layout.titles.size(), parts.size()) || parts[place].empty())
        return std::nullopt;
    try {
        return parseNumber(parts[place], 0.0, most);
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(title + ": " + error.what());
    }
}

Target targetOf(const std::string& line, const Layout& layout) {
    constexpr double ZENITH = 90.0;
    constexpr double MOST_WEIGHT = 1e9;
    const Fields parts = fieldsOf(line, layout.separator);
    if (parts.size() <= std::max({layout.name, layout.ra, layout.dec}))
        throw std::invalid_argument("expected name, right ascension, declination");
    if (parts[layout.name].empty()) throw std::invalid_argument("the name is empty");
    Target target = {parts[layout.name], positionIn(parts, layout)};
    target.minAltitude = numberIn(layout, parts, "min_altitude", ZENITH);
    target.weight = numberIn(layout, parts, "weight", MOST_WEIGHT);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!layout.isPosition(i)) target.columns.emplace_back(titleOf(layout, i), parts[i]);
    }
    return target;
}

/// A file as messages call it.
std::string shown(const std::string& fileName) {
    return fileName == STANDARD_STREAM ? "standard input" : printable(fileName);
}

std::string contentOf(const std::string& fileName) {
    try {
        return fileName == STANDARD_STREAM ? readStandardInput() : readFileOrPipe(fileName);
    } catch (const std::system_error& error) {
        throw UsageError("option --targets: " + shown(fileName) +
                         " cannot be read: " + error.code().message());
    }
}

/// Takes the lines of a file, in their order.
class TargetReader {
public:
    void add(const std::string& line) {
        const std::string text = trimmed(line);
        if (text.empty() || text[0] == '#') return;
        if (!layout_) {
            layout_ = layoutOf(line);
            if (!layout_->titles.empty()) return;
        }
        targets_.push_back(targetOf(line, *layout_));
    }
    const std::vector<Target>& targets() const { return targets_; }

private:
    std::optional<Layout> layout_;  ///< by the first line that is no comment
    std::vector<Target> targets_;
};

}  // namespace

std::vector<Target> readTargets(const std::string& fileName) {
    TextReader lines(contentOf(fileName));
    TargetReader reader;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        if (++number == 1 && beginsWith(line, BYTE_ORDER_MARK))
            line.erase(0, BYTE_ORDER_MARK.size());
        try {
            reader.add(line);
        } catch (const std::invalid_argument& error) {
            throw UsageError(shown(fileName) + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    if (reader.targets().empty())
        throw UsageError("option --targets: there is no target in " + shown(fileName));
    return reader.targets();
}

}  // namespace zarn::moon
