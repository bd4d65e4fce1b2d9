// Saturating size arithmetic for allocation sizes worked out of stream
// lengths and counts. Every operand and result must lie in -0x7FFFFFFF ..
// 0x7FFFFFFF; anything else becomes the poison value 0x80000000, which stays
// poison through later operations. Sign-extended to the allocator's size
// argument the poison asks for more than any allocator grants, so a hostile
// length ends as an ordinary refusal.
#pragma once

#include <stddef.h>
#include <stdint.h>

constexpr int32_t kTnefSizePoison = INT32_MIN;

inline int32_t tnefSaturate(int64_t value) {
    return (value < -0x7FFFFFFFLL || value > 0x7FFFFFFFLL) ? kTnefSizePoison
                                                           : static_cast<int32_t>(value);
}

inline int32_t tnefSizeAdd(int32_t a, int32_t b) {
    if (a == kTnefSizePoison || b == kTnefSizePoison) return kTnefSizePoison;
    return tnefSaturate(static_cast<int64_t>(a) + b);
}

inline int32_t tnefSizeMul(int32_t a, int32_t b) {
    if (a == kTnefSizePoison || b == kTnefSizePoison) return kTnefSizePoison;
    return tnefSaturate(static_cast<int64_t>(a) * b);
}

// The allocator's argument for a signed 32-bit size: sign-extended, so that a
// negative or poisoned size is a request no allocator grants.
inline size_t tnefAllocSize(int32_t size) {
    return static_cast<size_t>(static_cast<int64_t>(size));
}
