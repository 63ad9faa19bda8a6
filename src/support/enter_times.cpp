#include "support/enter_times.hpp"

void enter_times::add() {
    const clock_t::time_point current = now();
    repeated = last && current - *last < pause;
    last = current;
}

void enter_times::forget() {
    last.reset();
    repeated = false;
}
