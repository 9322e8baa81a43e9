#include "kit/foundation/property_list.h"

#include "kit/seat.h"
#include "platform/log.h"

#include <algorithm>
#include <string_view>

id seat::readPropertyList(std::span<const std::uint8_t> bytes, NSPropertyListFormat* format, std::string& refusal) {
    if (bytes.empty()) {
        refusal = "is empty";
        return nullptr;
    }
    if (bytes.size() > propertyListMaximumLength) {
        refusal = propertyListTooLarge;
        return nullptr;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool isBinary = text.starts_with("bplist");
    if (format) *format = isBinary ? NSPropertyListBinaryFormat_v1_0 : NSPropertyListXMLFormat_v1_0;
    return isBinary ? readBinaryPropertyList(bytes, refusal) : readXMLPropertyList(bytes, refusal);
}

id seat::readPropertyListFile(const std::string& path, std::shared_ptr<NSError>* error) {
    const auto data = readFile(path, propertyListMaximumLength, error);
    if (!data) return nullptr;
    std::string refusal;
    id value = readPropertyList(data->bytes(), nullptr, refusal);
    if (!value && error) *error = NSError::errorWithDescription("property list " + path + " " + refusal);
    return value;
}

std::shared_ptr<NSData>
NSPropertyListSerialization::dataWithPropertyList_format_options_error(const id& propertyList, unsigned long format,
                                                                       unsigned long, std::shared_ptr<NSError>* error) {
    std::string refusal = "is asked for in a format other than the binary one";
    auto data =
        format == NSPropertyListBinaryFormat_v1_0 ? seat::writeBinaryPropertyList(propertyList, refusal) : nullptr;
    if (data) return data;
    const std::string reason = "property list to write " + refusal;
    // Whoever asks for the error says what it was about; otherwise nobody would hear of it.
    if (error)
        *error = NSError::errorWithDescription(reason);
    else
        NSLog("%s", reason.c_str());
    return nullptr;
}

id NSPropertyListSerialization::propertyListWithData_options_format_error(const NSData& data, unsigned long,
                                                                          unsigned long* format,
                                                                          std::shared_ptr<NSError>* error) {
    std::string refusal;
    NSPropertyListFormat found{};
    id value = seat::readPropertyList(data.bytes(), &found, refusal);
    if (value) {
        if (format) *format = found;
        return value;
    }
    const std::string reason = "property list " + refusal;
    if (error)
        *error = NSError::errorWithDescription(reason);
    else
        NSLog("%s", reason.c_str());
    return nullptr;
}
