// MD5's block function: four rounds of sixteen steps, unrolled at compile time. A step waits for the
// one before it, so what counts is how much of it can be done before that one's result is there.
#include <utility>

#include "digest/little_endian.hh"
#include "digest/md5.hh"

namespace {

constexpr int steps = 64;
constexpr int steps_in_round = 16;

// 2^32 |sin(step + 1)|
constexpr uint32_t sines[steps] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};
constexpr int rotations[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The message word of a step: each round goes through all sixteen in an order of its own.
constexpr int word_of(int step) {
    constexpr int strides[4] = {1, 5, 3, 7};
    constexpr int offsets[4] = {0, 1, 5, 0};
    return (strides[step / steps_in_round] * step + offsets[step / steps_in_round]) % 16;
}

// b is the word that the step before this one made; the sum is known by then.
template <int round>
[[gnu::always_inline]] inline uint32_t mix(uint32_t sum, uint32_t b, uint32_t c, uint32_t d) {
    if constexpr (round == 0) {
        return sum + (d ^ (b & (c ^ d)));
    } else if constexpr (round == 1) {
        return sum + (c & ~d) + (b & d);  // no bit in both
    } else if constexpr (round == 2) {
        return sum + (b ^ (c ^ d));
    } else {
        return sum + (c ^ (b | ~d));
    }
}

template <int step>
[[gnu::always_inline]] inline void do_step(uint32_t &a, uint32_t b, uint32_t c, uint32_t d,
                                           const uint8_t *block) {
    constexpr int round = step / steps_in_round;
    constexpr int rotation = rotations[round][step % 4];
    const uint32_t sum = a + sines[step] + load_little_endian(block + 4 * word_of(step));
    const uint32_t mixed = mix<round>(sum, b, c, d);
    a = b + (mixed << rotation | mixed >> (32 - rotation));
}

// The words change their roles from step to step, and have their own again after four.
template <int... fourth>
[[gnu::always_inline]] inline void do_steps(uint32_t &a, uint32_t &b, uint32_t &c, uint32_t &d,
                                            const uint8_t *block,
                                            std::integer_sequence<int, fourth...>) {
    ((do_step<4 * fourth>(a, b, c, d, block), do_step<4 * fourth + 1>(d, a, b, c, block),
      do_step<4 * fourth + 2>(c, d, a, b, block), do_step<4 * fourth + 3>(b, c, d, a, block)),
     ...);
}

}  // namespace

// The state stays in registers over all the blocks.
void md5_blocks(uint32_t state[4], const uint8_t *blocks, uint32_t count) {
    uint32_t a = state[0];
    uint32_t b = state[1];
    uint32_t c = state[2];
    uint32_t d = state[3];
    for (; count > 0; count--, blocks += md5_block_size) {
        const uint32_t a_before = a;
        const uint32_t b_before = b;
        const uint32_t c_before = c;
        const uint32_t d_before = d;
        do_steps(a, b, c, d, blocks, std::make_integer_sequence<int, steps / 4>());
        a += a_before;
        b += b_before;
        c += c_before;
        d += d_before;
    }
    state[0] = a;
    state[1] = b;
    state[2] = c;
    state[3] = d;
}
