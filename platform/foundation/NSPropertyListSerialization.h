#pragma once

#include "platform/foundation/NSData.h"
#include "platform/foundation/NSError.h"
#include "platform/foundation/id.h"

// The phone's numbers.
enum NSPropertyListFormat : unsigned long {
    NSPropertyListXMLFormat_v1_0 = 100,
    NSPropertyListBinaryFormat_v1_0 = 200,
};

// Values to bytes and back. Any thread.
class NSPropertyListSerialization {
public:
    // The bytes of the value in the binary format (200; no other is written). nil, and an error where one is asked
    // for, when the value holds something that is no property-list value (a nil in an array, an object of another
    // class), refers to itself, or is beyond the bounds below. `options` is 0.
    static std::shared_ptr<NSData> dataWithPropertyList_format_options_error(const id& propertyList,
                                                                             unsigned long format,
                                                                             unsigned long options,
                                                                             std::shared_ptr<NSError>* error);
    // Strict reading of the XML and binary formats, within bounds (4 MiB, depth 64, 100,000 values). nil and an error
    // otherwise, naming what was wrong and, in XML, the line. Of two equal keys of a dictionary the last one counts.
    // `format` may be null; else it gets the format that was read.
    static id propertyListWithData_options_format_error(const NSData& data, unsigned long options,
                                                        unsigned long* format, std::shared_ptr<NSError>* error);
};
