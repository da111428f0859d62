#include "zarn-moon/forms/Columns.h"

#include <algorithm>
#include <iomanip>

#include "shared/cli/TextStreams.h"

namespace zarn::moon {

void Columns::add(const std::vector<std::string>& cells) {
    widths_.resize(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
        widths_[i] = std::max(widths_[i], cells[i].size());
    lines_.push_back(cells);
}

std::string Columns::text() const {
    std::string text;
    for (const auto& cells : lines_) {
        TextWriter line;
        for (std::size_t i = 0; i < cells.size(); ++i)
            line << std::setw(static_cast<int>(widths_[i]) + (i > 0 ? 2 : 0)) << cells[i];
        const std::string filled = line.str();
        text += filled.substr(0, filled.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

}  // namespace zarn::moon
