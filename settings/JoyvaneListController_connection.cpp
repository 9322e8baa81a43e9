// Connecting and disconnecting by hand, and asking what the daemon has.
//
// An exchange runs as one task on a worker. It holds the row's cell strongly until the completion has run, and the page
// weakly, loaded afresh for each use: leaving the page does not keep it alive, and the exchange completes without it.

#include "settings/JoyvaneListController.h"

#include "daemonlink/ControlConnection.h"
#include "daemonlink/exchanges.h"
#include "platform/dispatch.h"
#include "platform/foundation/NSData.h"
#include "platform/notify.h"
#include "settings/alerts.h"
#include "settings/daemon_failure.h"
#include "settings/preferences.h"

#include <algorithm>
#include <functional>

namespace {

using WeakPage = std::weak_ptr<JoyvaneListController>;
using Cell = std::shared_ptr<PSTableCell>;

Cell cellOf(const std::shared_ptr<PSSpecifier>& specifier) {
    return specifier ? specifier->propertyForKey("cellObject").object<PSTableCell>() : nullptr;
}

bool isConnected(const WeakPage& weakPage) {
    const auto page = weakPage.lock();
    return page && page->controllerConnected();
}

void setConnected(const WeakPage& weakPage, bool connected) {
    if (const auto page = weakPage.lock()) page->setControllerConnected(connected);
}

void invertConnected(const WeakPage& weakPage) {
    if (const auto page = weakPage.lock()) page->setControllerConnected(!page->controllerConnected());
}

std::uint32_t controllerType(const WeakPage& weakPage) {
    const auto page = weakPage.lock();
    return page ? static_cast<std::uint32_t>(page->currentControllerType()) : 0;
}

// Disables the row's cell and runs `exchange` on a worker with a connection whose replies are waited for up to
// `seconds`; then, with the connection closed, ends on the main queue: the row is enabled unless another exchange of
// the page still runs. A connection that cannot have the time-out ends without that: the row stays disabled until the
// page next comes into view.
void runExchange(ControlConnection connection, long seconds, const WeakPage& weakPage, const Cell& cell,
                 const std::shared_ptr<RunningExchanges>& running, std::function<void(int descriptor)> exchange) {
    const auto held = std::make_shared<ControlConnection>(std::move(connection));
    running->begin(cell);
    dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                   [held, seconds, weakPage, cell, running, exchange = std::move(exchange)] {
                       const bool hasTimeout = daemonlink::setReplyTimeout(held->descriptor(), seconds);
                       if (hasTimeout) exchange(held->descriptor());
                       held->close();
                       dispatch_async(dispatch_get_main_queue(), [weakPage, cell, running, hasTimeout] {
                           if (!hasTimeout) return running->endSilently();
                           running->end(cell);
                           if (const auto page = weakPage.lock()) page->reloadSpecifiers();
                       });
                   });
}

void connectOrDisconnect(int descriptor, const WeakPage& page, JVNControlFrame& frame) {
    if (isConnected(page)) {
        daemonlink::disconnect(descriptor, frame, controllerType(page));
        invertConnected(page);
        return;
    }
    notify_post("com.quorrel.jvninitbt");
    if (!daemonlink::connect(descriptor, frame, controllerType(page))) return;
    invertConnected(page);
    if (const auto strongPage = page.lock()) strongPage->updateDS4ColorWithSocket(descriptor);
}

} // namespace

void JoyvaneListController::queryControllerConnected() {
    auto connection = ControlConnection::open();
    if (!connection) {
        announceDaemonFailure();
        return;
    }
    const auto cell = cellOf(m_connectSpecifier);
    const WeakPage page = self(this);
    const auto frame = std::make_shared<JVNControlFrame>();
    runExchange(std::move(connection), daemonlink::queryReplySeconds, page, cell, m_runningExchanges,
                [page, frame](int descriptor) {
                    switch (daemonlink::queryConnection(descriptor, *frame)) {
                    case daemonlink::QueryReply::NotConnected:
                        setConnected(page, false);
                        break;
                    case daemonlink::QueryReply::Connected:
                        setConnected(page, true);
                        break;
                    case daemonlink::QueryReply::Unknown:
                        break;
                    }
                });
}

void JoyvaneListController::connectController(const std::shared_ptr<PSSpecifier>& specifier) {
    auto connection = ControlConnection::open();
    if (!connection) {
        announceDaemonFailure();
        return;
    }
    const auto settings = NSMutableDictionary::dictionaryWithContentsOfFile(preferences::file);
    const auto address =
        settings ? settings->objectForKey(preferences::ps4BluetoothAddressKey).object<NSData>() : nullptr;
    const bool needsAddress = currentControllerType() != JVNControllerTypePS3;
    const bool hasAddress = address && address->length() == JVNControlFrame::addressSize;
    if (needsAddress && !hasAddress) {
        showAlert("No controller!", "You need to pair your controller first.");
        return;
    }
    const auto frame = std::make_shared<JVNControlFrame>();
    if (needsAddress) std::copy_n(address->bytes().begin(), JVNControlFrame::addressSize, frame->payload);

    const auto cell = cellOf(specifier);
    const WeakPage page = self(this);
    runExchange(std::move(connection), daemonlink::connectReplySeconds, page, cell, m_runningExchanges,
                [page, frame](int descriptor) { connectOrDisconnect(descriptor, page, *frame); });
}
