// GObject references held by C++ scopes: GMime hands out objects with one
// reference that the caller owns, or borrows ones that stay with their
// parent.
#pragma once

#include <glib-object.h>

#include <utility>

namespace tnefmail {

template <typename T>
class GRef {
public:
    GRef() = default;
    // Takes over a reference the caller owns (what a *_new function returns).
    static GRef adopt(T* object) {
        GRef ref;
        ref.object_ = object;
        return ref;
    }
    // Adds a reference of its own to a borrowed object.
    static GRef share(T* object) {
        if (object != nullptr) g_object_ref(object);
        return adopt(object);
    }
    ~GRef() { reset(); }
    GRef(GRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    GRef& operator=(GRef&& other) noexcept {
        if (this != &other) {
            reset();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    GRef(const GRef& other) : object_(other.object_) {
        if (object_ != nullptr) g_object_ref(object_);
    }
    GRef& operator=(const GRef& other) {
        GRef copy(other);
        return *this = std::move(copy);
    }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // Hands the reference to the caller.
    T* release() { return std::exchange(object_, nullptr); }
    void reset() {
        if (object_ != nullptr) g_object_unref(object_);
        object_ = nullptr;
    }

private:
    T* object_ = nullptr;
};

// The object as the GMimeObject (or any base) it also is.
template <typename Base, typename T>
Base* as(T* object) {
    return reinterpret_cast<Base*>(object);
}

}  // namespace tnefmail
