/// A header text file, looked at before CFITSIO gets it.
///
/// CFITSIO takes the lines with few questions: it cuts, blanks and hides what it cannot hold, and
/// writes as much data as a header describes. So everything that would be lost is counted here, and
/// what would give a file that no reader opens, or one larger than its header, is refused.
#ifndef ZARN_INGEST_HEADERTEXT_H
#define ZARN_INGEST_HEADERTEXT_H

#include <cstddef>
#include <map>
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

/// Whether the keyword is one of the two that CFITSIO's checksums stand under.
bool isChecksum(const std::string& keyword);

/// What the header loses on its way into a FITS file.
struct Losses {
    Loss cut;          ///< cards with text beyond column 80
    Loss blanked;      ///< characters that a header cannot hold
    Loss hidden;       ///< cards behind the END card
    Loss upperCased;   ///< keywords not in upper case
    Loss carriage;     ///< lines that end in CR LF; nothing is lost with the CR
    Loss oldChecksum;  ///< CHECKSUM and DATASUM cards of the file that the text came from
};

/// One line, and the card that CFITSIO makes of it.
struct Card {
    std::string text;     ///< the card without trailing blanks
    std::string line;     ///< the line up to column 80
    std::string keyword;  ///< as CFITSIO reads it: HIERARCH names without that word
    std::size_t number;   ///< of the line, counted from 1; 0: of none
};

class HeaderText {
public:
    /// Reads and examines a file.
    ///
    /// @throw IngestError  when there is no such file, or it is no header text, or would not give a
    ///                     file that readers open and that is no larger than its header
    /// @throw InputWaits   when the file is there and cannot be read
    static HeaderText read(const std::string& fileName);

    /// Examines text already read; throws as `read` does.
    explicit HeaderText(const std::string& bytes);

    const std::vector<Card>& cards() const { return cards_; }  ///< before END
    const Losses& losses() const { return losses_; }

    /// Adds cards before END, which then count as the text's own, without a line number.
    ///
    /// @throw IngestError  when one of them is no legal card
    void append(const std::vector<std::string>& lines);

    /// What is converted: the lines of these cards, without END, which CFITSIO adds.
    ///
    /// @param oldChecksums  false: without CHECKSUM and DATASUM cards, to make room for new ones
    std::string text(bool oldChecksums) const;

private:
    void addLine(const std::string& line, std::size_t number);
    void addCard(const std::string& line, std::size_t number);
    void checkPlace(const Card& card) const;
    void checkCard(const Card& card);

    std::vector<Card> cards_;
    Losses losses_;
    std::map<std::string, std::size_t> structure_;  ///< structural keywords and their lines
    bool ended_ = false;
};

#endif  // ZARN_INGEST_HEADERTEXT_H
