/// A header text file, looked at before CFITSIO gets it.
///
/// CFITSIO takes the lines with few questions: it cuts, blanks and hides what it cannot hold, and
/// writes as much data as a header describes. So everything that would be lost is counted here, and
/// what would give a file that no reader opens, or one larger than its header, is refused.
#ifndef ZARN_INGEST_HEADERTEXT_H
#define ZARN_INGEST_HEADERTEXT_H

#include <cstddef>
#include <string>
#include <vector>

/// A kind of loss: how often, and where first.
struct Loss {
    std::size_t count = 0;
    std::size_t firstLine = 0;  ///< counted from 1; 0 while count is 0

    void add(std::size_t line, std::size_t number = 1) {
        if (number > 0 && count == 0) firstLine = line;
        count += number;
    }
};

/// What the header loses on its way into a FITS file.
struct Losses {
    Loss cut;          ///< cards with text beyond column 80
    Loss blanked;      ///< characters that a header cannot hold
    Loss hidden;       ///< cards behind the END card
    Loss upperCased;   ///< keywords not in upper case
    Loss carriage;     ///< lines that end in CR LF; nothing is lost with the CR
    Loss oldChecksum;  ///< CHECKSUM and DATASUM cards of the file that the text came from
};

/// One line as CFITSIO makes a card of it.
struct Card {
    std::string text;     ///< without trailing blanks
    std::string keyword;  ///< as CFITSIO reads it: HIERARCH names without that word
    std::size_t line;     ///< line of the text, counted from 1
};

class HeaderText {
public:
    /// Reads and examines a file.
    ///
    /// @throw IngestError  when it cannot be read, is no header text, or would not give a file that
    ///                     readers open and that is no larger than its header
    static HeaderText read(const std::string& fileName);

    /// Examines text already read; throws as `read` does.
    explicit HeaderText(const std::string& bytes);

    const std::vector<Card>& cards() const { return cards_; }  ///< before END
    const Losses& losses() const { return losses_; }
    /// The lines of these cards, which are what is converted. Without END, since CFITSIO adds one.
    const std::string& text() const { return text_; }

private:
    void addLine(const std::string& line, std::size_t number);
    void addCard(const std::string& line, std::size_t number);
    void checkStructure() const;

    std::vector<Card> cards_;
    Losses losses_;
    std::string text_;
    bool ended_ = false;
};

#endif  // ZARN_INGEST_HEADERTEXT_H
