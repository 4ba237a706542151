#pragma once
#include <utility>

/// Runs fnAtEnd at the end of the scope unless dismissed.
template <class Fn>
class ScopeExit {
  public:
    explicit ScopeExit(Fn fnAtEnd) noexcept : fn(std::move(fnAtEnd)) {}
    ~ScopeExit() {
        if (bArmed) fn();
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    void Dismiss() noexcept { bArmed = 0; }

  private:
    Fn fn;
    int bArmed = 1;
};
