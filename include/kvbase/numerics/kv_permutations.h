#pragma once

// Tables of permutations, such as the orders in which inks can be printed. Exported undecorated; any thread.

#include <cstdint>

#include "kvbase/base/export.h"

extern "C" {

/// n!, 1 for an n below 2. Above 8 it no longer fits 16 bits: the result is n! modulo 65536.
KV_EXPORT std::uint16_t FactorValue(std::uint8_t n);
/// Swaps two bytes of a row; equal positions do nothing.
KV_EXPORT void SwapValues(std::uint8_t i, std::uint8_t j, std::uint8_t *row);
/// Fills a table with the n! permutations of 0 to n - 1: n! pointers to rows of n bytes, all the caller's.
/// The first row is in order; of three elements the rows are 012, 102, 021, 201, 210, 120. n of 0 does
/// nothing, and so does one above 8, whose table FactorValue can't measure.
KV_EXPORT void Permutations(std::uint8_t n, std::uint8_t **rows);

}  // extern "C"
