#include "support/menu_exception.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

TEST(MenuException, CarriesItsText) {
    EXPECT_STREQ("user normal exit", menu_exception("user normal exit").what());
}

// The menu loop survives run-time errors: an orderly end must not be one.
TEST(MenuException, IsAnExceptionButNoRuntimeError) {
    static_assert(std::is_base_of_v<std::exception, menu_exception>);
    EXPECT_FALSE((std::is_base_of_v<std::runtime_error, menu_exception>));
}
