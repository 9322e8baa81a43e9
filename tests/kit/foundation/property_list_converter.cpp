// Reads every file of one folder as a property list and writes it, binary, under the same name to another. A file that
// is refused becomes "<name>.refused" with the reason.

#include "kit/foundation/property_list.h"
#include "system/files/atomic_file.h"
#include "system/files/files.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        const std::string target = std::string(argv[2]) + "/" + entry.path().filename().string();
        std::shared_ptr<NSError> error;
        std::string refusal;
        const id value = seat::readPropertyListFile(entry.path(), &error);
        const auto data = value ? seat::writeBinaryPropertyList(value, refusal) : nullptr;
        if (data)
            error = seat::writeFile(target, data->bytes());
        else
            std::ofstream(target + ".refused") << (error ? error->localizedDescription() : refusal);
        if (data && error) {
            std::fprintf(stderr, "%s\n", error->localizedDescription().c_str());
            return 1;
        }
    }
    return 0;
}
