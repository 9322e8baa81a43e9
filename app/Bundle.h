#pragma once

// A settings bundle: a folder with a manifest (Info.plist), a module and resources.

#include "platform/foundation/NSDictionary.h"
#include "system/modules/module_file.h"

#include <memory>
#include <string>

class UIViewController;

namespace app {

struct Bundle {
    std::string folder;
    std::string name;           // for people
    std::string principalClass; // of which the page is made
    std::string modulePath;
    seat::ModuleSeal seal;
    std::shared_ptr<NSDictionary> manifest; // all of it
};

// The manifest of the bundle in a folder, neither of which anybody but this user and the administrator may be able to
// change. On failure `problem` is the sentence to print; nothing of the bundle has run.
Bundle readBundle(const std::string& folder, std::string& problem);

// Loads the module, once it has been checked (seat::checkModule), and finds the principal class, which must be a
// screen. On failure nil, and `problem` is the sentence to print. The module stays for the rest of the process's life.
Class loadPrincipalClass(const Bundle& bundle, seat::CheckedModule module, std::string& problem);

// The bundle's own copy of a web page, as its manifest names it under "JVNPackagedPages" (address -> file); its real
// path. Empty when it has none.
std::string packagedPage(const Bundle& bundle, const std::string& address);

// A new screen of the class, set up; nil when it declines.
std::shared_ptr<UIViewController> makePage(Class principalClass);

// Beside the program that runs: ../lib/NAME, ../lib/joyvane/NAME of its folder, then NAME in it. The first one that is
// there, else the first.
std::string defaultBundleFolder(const std::string& name);

} // namespace app
