#pragma once

#include <memory>
#include <mutex>
#include <utility>

// A strong reference that any thread may read and replace: an atomic property. Guarded by a lock of its own, since the
// library's atomic shared pointer does not order a read before the write that follows it.
template <class T> class AtomicReference {
public:
    AtomicReference() = default;
    AtomicReference(std::shared_ptr<T> object) : m_object(std::move(object)) {}
    AtomicReference(const AtomicReference&) = delete;

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
    operator std::shared_ptr<T>() const { return load(); }

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<T> m_object;
};
