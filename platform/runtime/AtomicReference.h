#pragma once

#include <memory>
#include <mutex>
#include <utility>

// A strong reference that any thread may read and replace: an atomic property. Guarded by a lock of its own, since the
// library's atomic shared pointer does not order a read before the write that follows it.
template <class T> class AtomicReference {
public:
    // nil, or the object. A reference is not copied: its value is.
    AtomicReference() = default;
    AtomicReference(std::shared_ptr<T> object) : m_object(std::move(object)) {}
    AtomicReference(const AtomicReference&) = delete;

    // What is there now; it may be replaced by the time that the caller looks at it, but lives as long as the caller
    // holds it. Never waits for longer than a replacement takes.
    std::shared_ptr<T> load() const {
        const std::lock_guard lock(m_mutex);
        return m_object;
    }
    // What was there is released on the calling thread, outside the lock.
    void store(std::shared_ptr<T> object) {
        const std::lock_guard lock(m_mutex);
        m_object.swap(object);
    }
    AtomicReference& operator=(std::shared_ptr<T> object) {
        store(std::move(object));
        return *this;
    }
    // Reads and writes as a plain property does.
    operator std::shared_ptr<T>() const { return load(); }

private:
    // Held for the exchange of a pointer, never while an object is released.
    mutable std::mutex m_mutex;
    std::shared_ptr<T> m_object;
};
