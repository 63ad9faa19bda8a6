#include "support/escape_sequence.hpp"

namespace {

bool isFinal(char byte) { return byte >= '@' && byte <= '~'; }

}  // namespace

void escape_sequence::add(char byte) {
    if (byte == start) {
        state = state_t::escape;
    } else if (state == state_t::escape && byte == '[') {
        state = state_t::csi;
    } else if (state == state_t::escape && byte == 'O') {
        state = state_t::ss3;
    } else if (state != state_t::csi || isFinal(byte)) {
        state = state_t::whole;
    }
}
