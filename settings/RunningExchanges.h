#pragma once

#include "platform/settings_framework/PSTableCell.h"

#include <memory>
#include <vector>

// The exchanges of a page that have not come back to the main thread, who may outlive the page. While one runs the row
// that they belong to is disabled: it is enabled when the last one has ended, also where a later one found the row
// without a cell. Main thread only.
class RunningExchanges {
public:
    // A row that is not on screen has no cell (nil), and needs none.
    void begin(const std::shared_ptr<PSTableCell>& cell);
    void end(const std::shared_ptr<PSTableCell>& cell);
    // Ends one whose row stays as it is.
    void endSilently() { end(nullptr); }

private:
    int m_count = 0;
    std::vector<std::shared_ptr<PSTableCell>> m_toEnable;
};
