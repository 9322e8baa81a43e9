#pragma once

// A desktop of the tour's own: a browser and, when it is to have one, a program for messages, so that a tour starts
// nothing of the user's. The browser takes its address and ends; the other keeps the message as "message.eml" beside
// the tour's pictures.

#include <map>
#include <optional>
#include <string>

namespace app {

// While it lives, the folders in which desktops keep their programs are its own. Main thread.
class StandInDesktop {
public:
    // In a folder "desktop" of the tour's folder, which goes in the end.
    explicit StandInDesktop(const std::string& tourFolder);
    ~StandInDesktop();
    StandInDesktop(const StandInDesktop&) = delete;
    StandInDesktop& operator=(const StandInDesktop&) = delete;

    bool isThere() const { return m_isThere; }
    // False when it could not be written.
    bool setHasMail(bool hasMail);

private:
    bool install(const std::string& name, const std::string& mediaType, const std::string& action) const;
    void setVariable(const std::string& name, const std::string& value);

    std::string m_folder;
    bool m_isThere = false;
    std::map<std::string, std::optional<std::string>> m_former;
};

} // namespace app
