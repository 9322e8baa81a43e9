#include "app/Bundle.h"

#include "platform/foundation/NSPropertyListSerialization.h"
#include "platform/uikit/UIViewController.h"
#include "system/files/files.h"
#include "system/files/trusted_file.h"

#include <filesystem>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumManifestLength = 1 << 20;

std::string refusal(const std::string& subject, const std::string& reason) {
    return "bundle refused: " + subject + " " + reason;
}

// The manifest's string under a key; empty when there is none.
std::string text(const NSDictionary& manifest, const char* key) {
    const auto* const string = manifest.objectForKey(key).string();
    return string ? *string : std::string();
}

bool isHexDigest(const std::string& text) {
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

// A real path, not one under the root. nil when it cannot be read, and why, as the rest of a sentence.
std::shared_ptr<NSDictionary> readManifest(const std::string& path, std::string& problem) {
    const auto file = seat::openTrustedFile(path, problem);
    if (!file) return nullptr;
    std::shared_ptr<NSError> error;
    const auto data = seat::readOpenedFile(file, path, maximumManifestLength, &error);
    auto manifest =
        data ? NSPropertyListSerialization::propertyListWithData_options_format_error(*data, 0, nullptr, &error)
                   .object<NSDictionary>()
             : nullptr;
    if (!manifest) problem = "cannot be read as a manifest";
    return manifest;
}

// Empty, or what the manifest lacks.
std::string missingEntry(const NSDictionary& manifest) {
    for (const char* const key : {"CFBundleExecutable", "NSPrincipalClass"})
        if (text(manifest, key).empty()) return key;
    const auto* const size = manifest.objectForKey("JVNModuleSize").number();
    if (!size || size->integerValue() <= 0) return "JVNModuleSize";
    return isHexDigest(text(manifest, "JVNModuleSHA256")) ? "" : "JVNModuleSHA256";
}

} // namespace

app::Bundle app::readBundle(const std::string& folder, std::string& problem) {
    Bundle bundle;
    bundle.folder = folder;
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        problem = refusal(folder, fs::exists(folder, error) ? "is no folder" : "is missing");
        return bundle;
    }
    const std::string manifestPath = folder + "/Info.plist";
    std::string reason;
    bundle.manifest = readManifest(manifestPath, reason);
    if (!bundle.manifest) {
        problem = refusal(manifestPath, reason);
        return bundle;
    }
    if (const auto missing = missingEntry(*bundle.manifest); !missing.empty()) {
        problem = refusal(manifestPath, "is no manifest of ours: it has no valid " + missing);
        return bundle;
    }
    const std::string module = text(*bundle.manifest, "CFBundleExecutable");
    if (module == "." || module == ".." || module.find('/') != std::string::npos) {
        problem = refusal(manifestPath, "names a module outside the bundle");
        return bundle;
    }
    bundle.name = text(*bundle.manifest, "CFBundleName");
    if (bundle.name.empty()) bundle.name = module;
    bundle.principalClass = text(*bundle.manifest, "NSPrincipalClass");
    bundle.modulePath = folder + "/" + module;
    bundle.seal = {bundle.manifest->objectForKey("JVNModuleSize").number()->unsignedLongLongValue(),
                   text(*bundle.manifest, "JVNModuleSHA256")};
    return bundle;
}

Class app::loadPrincipalClass(const Bundle& bundle, seat::CheckedModule module, std::string& problem) {
    if (!module.problem.empty()) {
        problem = refusal(bundle.modulePath, module.problem);
        return nullptr;
    }
    if (const auto reason = seat::loadModule(std::move(module)); !reason.empty()) {
        problem = refusal(bundle.modulePath, "cannot be loaded: " + reason);
        return nullptr;
    }
    const Class found = objc_getClass(bundle.principalClass);
    if (!found || !class_isSubclassOf(found, UIViewController::classObject())) {
        problem = refusal(bundle.modulePath, "is no module of ours: it has no screen called " + bundle.principalClass);
        return nullptr;
    }
    return found;
}

std::string app::packagedPage(const Bundle& bundle, const std::string& address) {
    const auto pages = bundle.manifest->objectForKey("JVNPackagedPages").object<NSDictionary>();
    const std::string file = pages ? text(*pages, address.c_str()) : std::string();
    if (file.empty() || file.find('/') != std::string::npos) return {};
    std::error_code error;
    const fs::path path = fs::absolute(bundle.folder, error) / file;
    return fs::is_regular_file(path, error) ? path.lexically_normal().string() : std::string();
}

std::shared_ptr<UIViewController> app::makePage(Class principalClass) {
    const auto instance = class_createInstance(principalClass);
    return instance ? objc_msgSend(*instance, "init", {}).object<UIViewController>() : nullptr;
}

std::string app::defaultBundleFolder(const std::string& name) {
    std::error_code error;
    const fs::path programs = fs::read_symlink("/proc/self/exe", error).parent_path();
    const fs::path places[] = {programs.parent_path() / "lib" / name, programs.parent_path() / "lib/joyvane" / name,
                               programs / name};
    for (const auto& place : places)
        if (fs::exists(place, error)) return place.string();
    return places[0].string();
}
