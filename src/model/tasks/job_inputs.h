// What a background job may be given: a value without a pointer or reference to an object of the main thread.
// The fields of an aggregate are looked at too; what a class or a std::function hides can't be.
#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

#include <QObject>
#include <QPointer>

namespace corvane::job_inputs {

// Converts into whatever a field is.
struct AnyValue {
    template <class T>
    operator T&() const; // NOLINT(google-explicit-constructor)
};

// Converts into a pointer or a reference to an object of the main thread, and into nothing else.
struct MainThreadObject {
    template <class T>
        requires std::derived_from<T, QObject>
    operator T*() const; // NOLINT(google-explicit-constructor)
    template <class T>
        requires std::derived_from<T, QObject>
    operator T&() const; // NOLINT(google-explicit-constructor)
    template <class T>
    operator QPointer<T>() const; // NOLINT(google-explicit-constructor)
};

template <std::size_t>
using AnyValueAt = AnyValue;

template <class Inputs, std::size_t... before, std::size_t... after>
constexpr bool holdsObjectAt(std::index_sequence<before...>, std::index_sequence<after...>) {
    return requires { Inputs{AnyValueAt<before>()..., MainThreadObject(), AnyValueAt<after>()...}; };
}

template <class Inputs, std::size_t... fields>
constexpr bool hasFields(std::index_sequence<fields...>) {
    return requires { Inputs{AnyValueAt<fields>()...}; };
}

template <class Inputs, std::size_t count>
constexpr bool holdsObject() {
    return [&]<std::size_t... at>(std::index_sequence<at...>) {
        return (holdsObjectAt<Inputs>(std::make_index_sequence<at>(),
                                      std::make_index_sequence<count - at - 1>()) ||
                ...);
    }(std::make_index_sequence<count>());
}

inline constexpr std::size_t mostFields = 12;

template <class Inputs, std::size_t count = mostFields>
constexpr bool holdsMainThreadObject() {
    if constexpr (!std::is_aggregate_v<Inputs>) {
        return std::convertible_to<Inputs, const QObject*>;
    } else if constexpr (count == 0) {
        return false;
    } else if constexpr (hasFields<Inputs>(std::make_index_sequence<count>())) {
        return holdsObject<Inputs, count>();
    } else {
        return holdsMainThreadObject<Inputs, count - 1>();
    }
}

} // namespace corvane::job_inputs

namespace corvane {

template <class T>
concept JobInputs = std::is_object_v<T> && !job_inputs::holdsMainThreadObject<T>();

// A function or a lambda without captures: all that it has are its inputs.
template <class T>
concept Captureless = std::is_pointer_v<T> || std::is_empty_v<T>;

} // namespace corvane
