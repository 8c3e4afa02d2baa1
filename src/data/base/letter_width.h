// Letters of 8 bits to letters of 16 and back, eight at once where the processor can.
#pragma once

#include <QtGlobal>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zov {

/// Each byte to a 16-bit letter. Tells whether all are ASCII.
inline bool widenLetters(const char* from, qsizetype length, char16_t* to) {
    qsizetype i = 0;
#ifdef __SSE2__
    if (length >= 8) {
        const __m128i zero = _mm_setzero_si128();
        __m128i seen = zero;
        const auto widenEight = [&](qsizetype at) {
            const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + at));
            seen = _mm_or_si128(seen, eight);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), _mm_unpacklo_epi8(eight, zero));
        };
        for (; i + 8 <= length; i += 8) widenEight(i);
        // The rest, with some that were widened already.
        if (i < length) widenEight(length - 8);
        return (_mm_movemask_epi8(seen) & 0xFF) == 0;
    }
#endif
    unsigned seen = 0;
    for (; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(from[i]);
        seen |= c;
        to[i] = c;
    }
    return !(seen & 0x80);
}

/// The lower byte of each letter.
inline void narrowLetters(const char16_t* from, qsizetype length, char* to) {
    qsizetype i = 0;
#ifdef __SSE2__
    if (length >= 8) {
        const __m128i lower = _mm_set1_epi16(0xFF);
        const auto narrowEight = [&](qsizetype at) {
            const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
            const __m128i bytes = _mm_and_si128(eight, lower);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(to + at), _mm_packus_epi16(bytes, bytes));
        };
        for (; i + 8 <= length; i += 8) narrowEight(i);
        if (i < length) narrowEight(length - 8);
        return;
    }
#endif
    for (; i < length; ++i) to[i] = static_cast<char>(from[i]);
}

/// Whether narrowing loses nothing.
inline bool areNarrow(const char16_t* letters, qsizetype length) {
    unsigned seen = 0;
    for (qsizetype i = 0; i < length; ++i) seen |= letters[i];
    return seen < 0x100;
}

}  // namespace zov
