#pragma once

#include "platform/runtime/NSObject.h"

// A row of a section, both counted from 0. Immutable, equal by value; whether there is such a row is for the table to
// say.
class NSIndexPath final : public NSObject {
    NS_CLASS(NSIndexPath)

    // Never nil; negative numbers are kept, and name no row of any table.
    static std::shared_ptr<NSIndexPath> indexPathForRow_inSection(long row, long section);

    // Within its section.
    long row() const { return m_row; }
    long section() const { return m_section; }
    // Another index path with the same row and section.
    bool isEqual(const NSObject& other) const override;

private:
    long m_row = 0;
    long m_section = 0;
};
