#pragma once

/// Ends the process, as a finding of the fuzzer, unless both are the same.
template <typename value_type>
void requireSame(const value_type& expected, const value_type& actual) {
    if (expected != actual) {
        __builtin_trap();
    }
}
