#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/id.h"

enum NSPropertyListFormat : unsigned long {
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

class NSPropertyListSerialization {
public:
    // The bytes of the value in the binary format (200; no other is written). nil, and an error where one is asked
    // for, when the value holds something that is no property-list value, or refers to itself.
    static std::shared_ptr<NSData> dataWithPropertyList_format_options_error(const id& propertyList,
                                                                             unsigned long format,
                                                                             unsigned long options,
                                                                             std::shared_ptr<NSError>* error);
    // Strict reading of the XML and binary formats, within bounds (4 MiB, depth 64, 100,000 values). nil and an error
    // otherwise. `format` may be null.
    static id propertyListWithData_options_format_error(const NSData& data, unsigned long options,
                                                        unsigned long* format, std::shared_ptr<NSError>* error);
};
