#include "settings/RunningExchanges.h"

#include <utility>

namespace {

void setCellEnabled(const std::shared_ptr<PSTableCell>& cell, bool enabled) {
    if (!cell) return;
    cell->setUserInteractionEnabled(enabled);
    if (cell->textLabel()) cell->textLabel()->setEnabled(enabled);
}

} // namespace

void RunningExchanges::begin(const std::shared_ptr<PSTableCell>& cell) {
    ++m_count;
    setCellEnabled(cell, false);
}

void RunningExchanges::end(const std::shared_ptr<PSTableCell>& cell) {
    if (cell) m_toEnable.push_back(cell);
    if (--m_count > 0) return;
    for (const auto& each : std::exchange(m_toEnable, {})) setCellEnabled(each, true);
}
