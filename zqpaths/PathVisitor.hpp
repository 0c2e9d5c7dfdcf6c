#pragma once
// PathVisitor is any function of a number and a path that is called for paths of a set, in the
// order of the call. One that returns bool stops the visit with false:
//
//     set.forEach([](std::uint64_t number, std::string_view path) { ... });
//     set.forEach([&](std::uint64_t number, std::string_view path) { return ++count < 10; });
//
// The path is gone after the call. The visitor is called on the thread that asked, whatever other
// threads the library uses meanwhile; what it throws ends the visit and passes through. It refers
// to the function, which outlives it: it is for arguments alone.

#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>

namespace zqpaths {

class PathVisitor {
public:
    template <class Function>
    requires std::invocable<Function&, std::uint64_t, std::string_view> &&
        (!std::same_as<std::remove_cvref_t<Function>, PathVisitor>)
        // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): it is no visitor itself
        PathVisitor(Function&& function) noexcept
        : function_(const_cast<void*>(static_cast<const void*>(std::addressof(function)))),
          call_([](void* called, std::uint64_t number, std::string_view path) -> bool {
              auto& visit = *static_cast<std::remove_reference_t<Function>*>(called);
              if constexpr (std::is_void_v<decltype(visit(number, path))>) {
                  visit(number, path);
                  return true;
              } else {
                  return visit(number, path);
              }
          }) {}

    /// False if the visit is to stop.
    bool operator()(std::uint64_t number, std::string_view path) const {
        return call_(function_, number, path);
    }

private:
    void* function_;
    bool (*call_)(void* function, std::uint64_t number, std::string_view path);
};

}  // namespace zqpaths
