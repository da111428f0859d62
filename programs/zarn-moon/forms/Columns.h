/// A table of text.
#ifndef ZARN_MOON_COLUMNS_H
#define ZARN_MOON_COLUMNS_H

#include <cstddef>
#include <string>
#include <vector>

namespace zarn::moon {

/// Lines of columns, aligned to the right. Each column is as wide as its widest cell.
class Columns {
public:
    /// Adds a line. All lines have the same number of cells.
    void add(const std::vector<std::string>& cells);

    /// The lines, two blanks between columns and none at the end of a line.
    std::string text() const;

private:
    std::vector<std::size_t> widths_;  ///< of the widest cell so far [characters]
    std::vector<std::vector<std::string>> lines_;
};

}  // namespace zarn::moon

#endif  // ZARN_MOON_COLUMNS_H
