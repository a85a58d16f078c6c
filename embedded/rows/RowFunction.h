// Row functions: the inner loops of nodes and of the texture encoding. Their sources (the .cpp files of this
// folder) are compiled once for each instruction set; at run time the version is chosen.
//
// A header declares a row function by a plain function type:
//
//     using LevelsRow = void(const LevelsCurve& curve, const float* in, int count, float* out);
//     KVSUBSTANCE_ROW_FUNCTION(levelsRow, LevelsRow)
//
// and its source defines it:
//
//     namespace embedded::KVSUBSTANCE_ROWS {
//     void levelsRow(const LevelsCurve& curve, const float* in, int count, float* out) { ... }
//     }
//
// Callers take embedded::levelsRow.chosen().
//
// An inline function or template that several sources share is kept once by the linker, in any of its
// versions. One compiled for a large instruction set must not end up in the others. So these sources include
// nothing but headers of this folder and C headers; their helpers stand in unnamed namespaces or in the
// inline namespace of Arithmetic.h; arguments are plain structures without member functions.
#pragma once

#if defined(KVSUBSTANCE_ROWS) // inside a row source: rows_baseline, rows_avx2 or rows_avx512

#define KVSUBSTANCE_ROW_FUNCTION(name, Signature)                                                            \
    namespace KVSUBSTANCE_ROWS {                                                                             \
    Signature name;                                                                                          \
    }

#else

#include "embedded/rows/InstructionSet.h"

namespace embedded {

template <typename Signature>
struct RowFunction {
    Signature* versions[instructionSetCount];

    Signature* chosen() const { return versions[static_cast<int>(instructionSet())]; }
};

} // namespace embedded

#if defined(KVSUBSTANCE_HAS_AVX512)
#define KVSUBSTANCE_AVX2_VERSION(name) rows_avx2::name
#define KVSUBSTANCE_AVX512_VERSION(name) rows_avx512::name
#elif defined(KVSUBSTANCE_HAS_AVX2)
#define KVSUBSTANCE_AVX2_VERSION(name) rows_avx2::name
#define KVSUBSTANCE_AVX512_VERSION(name) nullptr
#else
#define KVSUBSTANCE_AVX2_VERSION(name) nullptr
#define KVSUBSTANCE_AVX512_VERSION(name) nullptr
#endif

#define KVSUBSTANCE_ROW_FUNCTION(name, Signature)                                                            \
    namespace rows_baseline {                                                                                \
    Signature name;                                                                                          \
    }                                                                                                        \
    namespace rows_avx2 {                                                                                    \
    Signature name;                                                                                          \
    }                                                                                                        \
    namespace rows_avx512 {                                                                                  \
    Signature name;                                                                                          \
    }                                                                                                        \
    constexpr RowFunction<Signature> name = {/* NOLINT(bugprone-macro-parentheses) */                        \
                                             {rows_baseline::name, KVSUBSTANCE_AVX2_VERSION(name),           \
                                              KVSUBSTANCE_AVX512_VERSION(name)}};

#endif
