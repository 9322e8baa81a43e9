// The pairing instructions: handed to a real mail program as a real file, or opened in a real browser.

#include "settings/pairing_instructions.h"

#include "desktop/links/browser.h"
#include "kit/foundation/base64.h"
#include "kit/uikit/url_opener.h"
#include "tests/settings/PageTest.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/LoggedLines.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <regex>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string noMailAlert =
    "Your E-mail account is not configured\nYou are taken to a browser with pairing instructions.";

const std::string whatOpenDoes =
    "Opens in your mail program, where you write whom it is for and send it. Nothing is sent from here.";
const std::string whatFailed =
    "Your mail program could not be started, so the message is still here. Try again, or cancel.";

std::vector<std::string> linkTargets(const std::string& html) {
    std::vector<std::string> targets;
    const std::regex link("<a href=([^>]*)>");
    for (std::sregex_iterator match(html.begin(), html.end(), link), end; match != end; ++match)
        targets.push_back((*match)[1]);
    return targets;
}

class Instructions : public PageTest {
protected:
    Instructions() {
        seat::setURLOpener([this](const std::string& url) {
            ++addressesOpened;
            return seat::openInBrowser(url);
        });
    }
    ~Instructions() override { seat::setURLOpener(nullptr); }

    void openComposer() {
        desktop.install("message/rfc822", "mailer");
        show();
        ASSERT_TRUE(app.tap("E-mail Pairing Instructions"));
        ASSERT_TRUE(app.navigation()->presentedViewController());
    }
    // The message that the mail program was started with.
    std::string handedOver() {
        app.waitUntil([&] { return !desktop.argumentsOf("mailer").empty(); });
        const auto arguments = desktop.argumentsOf("mailer");
        if (arguments.size() != 1) return {};
        std::ifstream file(arguments[0], std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string bodyOf(const std::string& draft) {
        const auto body = seat::decodeBase64(draft.substr(draft.find("\r\n\r\n") + 4));
        return body ? std::string(body->begin(), body->end()) : std::string();
    }
    bool isComposerGone() {
        return app.waitUntil([&] { return !app.navigation()->presentedViewController(); });
    }

    testing_support::FakeDesktop desktop;
    testing_support::LoggedLines log;
    int addressesOpened = 0;
};

TEST(InstructionsBody, HasItsElementsAndTextsOnOneLine) {
    const std::string body = std::regex_replace(std::string(pairingInstructionsHTML), std::regex("href=[^>]*"), "href");
    EXPECT_EQ(body, "<p><h1>Pairing Your PS3 Controller</h1> Note: this needs to be done only the first time "
                    "<h2>Mac OS X:</h2><ol><li>Download <a href>SixPair</a></li>"
                    "<li>Connect both your PS3 controller and your iOS device to your Mac</li>"
                    "<li>Click the Pair controller button</li><li>Disconnect your controller.</li><li>Done!</li></ol>"
                    "<h2>Windows:</h2><ol><li>Download and install <a href>SixaxisPairTool</a></li>"
                    "<li>Connect both your iOS device and PS3 controller to your Windows computer</li>"
                    "<li>Run SixaxisPairTool and insert your iOS device Bluetooth address (you can find it in "
                    "Settings > General > About > Bluetooth)</li>"
                    "<li>Click Update and disconnect your controller.</li><li>Done!</li></ol>"
                    "<h2>Linux:</h2><ol><li>Download and compile <a href>sixpair</a></li>"
                    "<li>Connect both your iOS device and PS3 controller to your Linux PC</li>"
                    "<li>Run sixpair and give it your iOS device Bluetooth address as the first CLI parameter</li>"
                    "<li>Disconnect the controller</li><li>Done!</li>"
                    "<li>More in-depth instructions <a href>here</a>.</li></ol></p>");
}

TEST(InstructionsBody, LinkTargetsStandWithoutQuotationMarks) {
    const auto targets = linkTargets(pairingInstructionsHTML);

    ASSERT_EQ(targets.size(), 4u);
    for (const auto& target : targets)
        EXPECT_TRUE(std::regex_match(target, std::regex("https?://[^\\s\"'=<>`]+"))) << target;
    EXPECT_TRUE(targets[0].ends_with("/sixpairmac.zip"));
    EXPECT_TRUE(targets[2].ends_with("sixpair.c"));
    EXPECT_TRUE(targets[2].starts_with(targets[3])) << "the source file is an attachment of the help page";
}

TEST(InstructionsBody, PageAndDownloadAreOnOneSite) {
    const std::string page = pairingInstructionsURL;
    const std::string path = "/sixpair_instructions.html";

    ASSERT_TRUE(page.ends_with(path));
    EXPECT_EQ(linkTargets(pairingInstructionsHTML).front(),
              page.substr(0, page.size() - path.size()) + "/sixpairmac.zip");
}

TEST_F(Instructions, ComposerShowsTheBodyAndWhatWillBecomeOfIt) {
    openComposer();

    for (const char* text : {"New Message", "Pairing Your PS3 Controller", "Mac OS X:", "Cancel", "Open"})
        EXPECT_TRUE(app.find(text)) << text;
    EXPECT_TRUE(app.find(whatOpenDoes));
    EXPECT_EQ(app.alert(), std::nullopt);
    EXPECT_THAT(desktop.argumentsOf("mailer"), IsEmpty());
}

TEST_F(Instructions, OpenHandsTheMessageToTheMailProgramAndDismisses) {
    openComposer();

    ASSERT_TRUE(app.tap("Open"));

    const std::string draft = handedOver();
    EXPECT_NE(draft.find("\r\nTo: \r\n"), std::string::npos);
    EXPECT_NE(draft.find("\r\nSubject: \r\n"), std::string::npos);
    EXPECT_NE(draft.find("\r\nContent-Type: text/html"), std::string::npos);
    EXPECT_EQ(bodyOf(draft), pairingInstructionsHTML);
    EXPECT_TRUE(isComposerGone());
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Instructions, ReturnOpensAtOnce) {
    openComposer();
    app.settle();

    app.touches().key(40);

    EXPECT_TRUE(isComposerGone());
    EXPECT_EQ(bodyOf(handedOver()), pairingInstructionsHTML);
}

TEST_F(Instructions, AMailProgramThatTakesAddressesOnlyGetsTheTextWithItsLinks) {
    desktop.install("x-scheme-handler/mailto", "webmail");
    show();
    ASSERT_TRUE(app.tap("E-mail Pairing Instructions"));
    ASSERT_TRUE(app.tap("Open"));

    EXPECT_TRUE(isComposerGone());
    app.waitUntil([&] { return !desktop.argumentsOf("webmail").empty(); });
    const auto arguments = desktop.argumentsOf("webmail");
    ASSERT_EQ(arguments.size(), 1u);
    EXPECT_TRUE(arguments[0].starts_with("mailto:?body=Pairing%20Your%20PS3%20Controller%0D%0A")) << arguments[0];
    EXPECT_NE(arguments[0].find("%2Fsixpairmac%2Ezip"), std::string::npos);
}

TEST_F(Instructions, LinksInTheMessageOpenInTheBrowser) {
    desktop.install("x-scheme-handler/https", "browser");
    openComposer();
    app.settle();

    ASSERT_TRUE(app.tap("here"));

    EXPECT_TRUE(app.waitUntil([&] { return !desktop.argumentsOf("browser").empty(); }));
    EXPECT_THAT(desktop.argumentsOf("browser"), ElementsAre(linkTargets(pairingInstructionsHTML)[3]));
    EXPECT_TRUE(app.navigation()->presentedViewController()) << "the composer stays";
}

TEST_F(Instructions, EscapeCancels) {
    openComposer();
    app.settle();

    app.touches().key(41);

    EXPECT_TRUE(isComposerGone());
    EXPECT_THAT(desktop.argumentsOf("mailer"), IsEmpty());
}

TEST_F(Instructions, CancelDismissesAndSendsNothing) {
    openComposer();

    ASSERT_TRUE(app.tap("Cancel"));

    EXPECT_TRUE(isComposerGone());
    EXPECT_THAT(desktop.argumentsOf("mailer"), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(app.root() + "/tmp/mail"));
}

TEST_F(Instructions, ComposerSlidesInAndOutWhateverBecameOfTheMessage) {
    desktop.install("message/rfc822", "mailer");
    show();
    using Result = MFMailComposeResult;
    for (const auto result : {Result::Cancelled, Result::Saved, Result::Sent, Result::Failed}) {
        page->emailInstructions();
        EXPECT_TRUE(app.scene().isAnimating());
        app.settle();
        const auto composer =
            std::dynamic_pointer_cast<MFMailComposeViewController>(app.navigation()->presentedViewController());
        ASSERT_TRUE(composer);

        page->mailComposeController_didFinishWithResult_error(*composer, result, nullptr);

        EXPECT_TRUE(app.scene().isAnimating());
        app.settle();
        EXPECT_FALSE(app.navigation()->presentedViewController());
        EXPECT_EQ(app.alert(), std::nullopt);
    }
}

TEST_F(Instructions, AHandOverThatFailsIsSaidAndTheComposerStays) {
    openComposer();
    desktop.removeProgram("mailer");

    for (int attempt = 0; attempt < 2; ++attempt) {
        ASSERT_TRUE(app.tap("Open"));

        ASSERT_TRUE(app.waitUntil([&] { return app.find(whatFailed); }));
        EXPECT_EQ(app.find(whatFailed)->role, UIAccessibilityRole::Alert);
        EXPECT_FALSE(app.find(whatOpenDoes));
        EXPECT_TRUE(app.navigation()->presentedViewController());
        EXPECT_EQ(app.alert(), whatFailed) << "the page says nothing";
        EXPECT_EQ(log.count("handing the message over: "), attempt + 1u);
    }

    desktop.addProgram("mailer");
    ASSERT_TRUE(app.tap("Open"));
    EXPECT_TRUE(isComposerGone());
    EXPECT_EQ(bodyOf(handedOver()), pairingInstructionsHTML);
}

TEST_F(Instructions, AMailProgramThatTheDesktopCannotStartIsSaidToo) {
    openComposer();
    // Still the default as far as the desktop knows, but nothing that could be started.
    const testing_support::RefusingTool tool(desktop);

    ASSERT_TRUE(app.tap("Open"));

    EXPECT_TRUE(app.waitUntil([&] { return app.find(whatFailed); }));
    EXPECT_TRUE(app.navigation()->presentedViewController());
    EXPECT_TRUE(std::filesystem::is_empty(app.root() + "/tmp/mail")) << "nobody will read the draft";
}

TEST_F(Instructions, WithoutMailTheAlertLeadsToTheBrowserExactlyOnce) {
    desktop.install("x-scheme-handler/http", "browser");
    show();

    ASSERT_TRUE(app.tap("E-mail Pairing Instructions"));

    EXPECT_EQ(app.alert(), noMailAlert);
    EXPECT_EQ(addressesOpened, 0) << "only the dismissed alert opens it";
    EXPECT_FALSE(app.navigation()->presentedViewController());

    ASSERT_TRUE(app.dismissAlert());

    EXPECT_TRUE(app.waitUntil([&] { return !desktop.argumentsOf("browser").empty(); }));
    EXPECT_EQ(addressesOpened, 1);
    EXPECT_THAT(desktop.argumentsOf("browser"), ElementsAre(pairingInstructionsURL));
    EXPECT_EQ(app.alert(), std::nullopt);
}

TEST_F(Instructions, RowOfItsOwnLeadsThereForEveryControllerType) {
    show(JVNControllerTypeSyncButton);

    ASSERT_TRUE(app.tap("PS3 Pairing Instructions"));

    EXPECT_EQ(app.alert(), noMailAlert);
    ASSERT_TRUE(app.dismissAlert());
    EXPECT_EQ(addressesOpened, 1);
}

TEST_F(Instructions, AlertThatOutlivesThePageOpensNothing) {
    desktop.install("x-scheme-handler/http", "browser");
    show();
    ASSERT_TRUE(app.tap("E-mail Pairing Instructions"));
    app.close();
    page = nullptr;

    EXPECT_TRUE(app.dismissAlert());

    EXPECT_EQ(addressesOpened, 0);
}

} // namespace
