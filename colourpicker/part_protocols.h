#pragma once

#include "platform/foundation/NSNumber.h"

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

class UIColor;

// What the picker asks of its parts. The default parts have the same names outside this namespace; a client's own part
// adopts one of these beside deriving from a view or control.
//
// Besides, a map and a slider send UIControlEventValueChanged while the user changes them, and
// UIControlEventEditingDidEnd when the user lets go.
namespace protocol {

class ZKColorMapView {
public:
    virtual ~ZKColorMapView() = default;
    virtual std::shared_ptr<UIColor> color() = 0;
    virtual void setColor(std::shared_ptr<UIColor> color) = 0;
    virtual double brightness() const = 0;
    virtual void setBrightness(double brightness) = 0;
    // Optional.
    virtual std::optional<NSNumber> saturationUpperLimit() const { return std::nullopt; }
    virtual void setSaturationUpperLimit(std::optional<NSNumber>) {}
};

class ZKBrightnessSlider {
public:
    virtual ~ZKBrightnessSlider() = default;
    virtual std::optional<NSNumber> brightness() const = 0;
    virtual std::shared_ptr<UIColor> color() = 0;
    virtual void setColor(std::shared_ptr<UIColor> color) = 0;
    // Optional.
    virtual std::optional<NSNumber> brightnessLowerLimit() const { return std::nullopt; }
    virtual void setBrightnessLowerLimit(std::optional<NSNumber>) {}
};

class ZKColorInfoView {
public:
    virtual ~ZKColorInfoView() = default;
    virtual std::shared_ptr<UIColor> color() = 0;
    virtual void setColor(std::shared_ptr<UIColor> color) = 0;
};

} // namespace protocol

// A strong reference to a view that adopts a protocol: `->` speaks to it as the protocol, `view()` is the view. May be
// nil.
template <class View, class Protocol> class Adopting {
public:
    Adopting() = default;
    Adopting(std::nullptr_t) {}
    template <class T>
    requires std::derived_from<T, View> && std::derived_from<T, Protocol> Adopting(std::shared_ptr<T> part)
        : m_protocol(part.get()), m_view(std::move(part)) {}

    explicit operator bool() const { return m_view != nullptr; }
    Protocol* operator->() const { return m_protocol; }
    const std::shared_ptr<View>& view() const { return m_view; }

private:
    Protocol* m_protocol = nullptr; // the same object, kept alive by the view
    std::shared_ptr<View> m_view;
};
