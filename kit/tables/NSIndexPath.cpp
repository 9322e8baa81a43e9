#include "platform/uikit/NSIndexPath.h"

NS_CLASS_IMPLEMENTATION(NSIndexPath, NSObject)

std::shared_ptr<NSIndexPath> NSIndexPath::indexPathForRow_inSection(long row, long section) {
    auto path = alloc();
    path->m_row = row;
    path->m_section = section;
    return path;
}

bool NSIndexPath::isEqual(const NSObject& other) const {
    const auto* path = dynamic_cast<const NSIndexPath*>(&other);
    return path && path->m_row == m_row && path->m_section == m_section;
}
