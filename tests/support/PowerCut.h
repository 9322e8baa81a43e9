#pragma once

#include <functional>
#include <map>
#include <string>

namespace testing_support {

// The disk under one folder, which a power cut may leave without anything that was not flushed. What is in the folder
// at first counts as flushed; after that a file's bytes are safe as of its last fsync(), names as of the folder's. One
// at a time; the folder's files are regular and stand in it directly.
class PowerCut {
public:
    using Files = std::map<std::string, std::string>; // names and bytes

    // Names may reach the disk before they are flushed; bytes that are not flushed are lost all the same.
    enum class Names { Flushed, AsTheyAre };

    explicit PowerCut(std::string folder);
    ~PowerCut();
    PowerCut(const PowerCut&) = delete;
    PowerCut& operator=(const PowerCut&) = delete;

    // What the folder would hold if the power were cut now.
    Files left(Names names) const;
    // Called right after each name that is given by a rename and each flush, on the thread that does it.
    void atEveryStep(std::function<void()> look);
};

} // namespace testing_support
