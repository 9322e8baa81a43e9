// A bundle's manifest of any bytes: all that is needed of it, or a sentence that says what is not there.

#include "app/Bundle.h"
#include "tests/fuzz/support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::write(fuzz::folder() + "/Info.plist", data, size);

    std::string problem;
    const app::Bundle bundle = app::readBundle(fuzz::folder(), problem);
    if (!problem.empty()) {
        fuzz::expect(problem.starts_with("bundle refused: ") && problem.find('\n') == std::string::npos,
                     "a refusal is one sentence");
        return 0;
    }
    const std::string module = bundle.modulePath.substr(fuzz::folder().size() + 1);
    fuzz::expect(!module.empty() && module != "." && module != ".." && module.find('/') == std::string::npos,
                 "the module is a file in the bundle");
    fuzz::expect(!bundle.principalClass.empty() && !bundle.name.empty(), "there is a name, and a class");
    fuzz::expect(bundle.seal.size > 0 && bundle.seal.sha256.size() == 64, "the module is sealed");
    (void)app::packagedPage(bundle, "http://quorrel.example/sixpair_instructions.html");
    return 0;
}
