#include "platform/quartz/CATransaction.h"

#include <algorithm>
#include <vector>

namespace {

// One entry an open transaction: whether it disables actions.
thread_local std::vector<bool> openTransactions;

} // namespace

void CATransaction::begin() { openTransactions.push_back(false); }

void CATransaction::commit() {
    if (!openTransactions.empty()) openTransactions.pop_back();
}

void CATransaction::setDisableActions(bool disable) {
    if (!openTransactions.empty()) openTransactions.back() = disable;
}

bool CATransaction::disableActions() {
    return std::find(openTransactions.begin(), openTransactions.end(), true) != openTransactions.end();
}
