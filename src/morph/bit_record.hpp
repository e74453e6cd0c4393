// The analysed 1-bit structuring element.
#pragma once

#include <cstdint>

#include "morph/element_record.hpp"

/// The three copies of the element lie behind the record, each slot rounded up to 16 bytes.
struct LumiMorphBitRecord
{
    const Lum8u* pMask;          ///< the caller's bytes as they stand
    const Lum8u* pInvertedMask;  ///< 0xFF where the element is not set, 0 where it is
    const Lum8u* pSetMask;       ///< 0xFF where it is set, 0 where it is not
    Lum32s reserved[2];          ///< 0
    Lum32s maskWidth, maskHeight;
    Lum32s anchorX, anchorY;           ///< (width - 1) / 2 and (height - 1) / 2; mirrored where the element is rotated
    Lum32s rightRadius, bottomRadius;  ///< what lies behind the anchor
    Lum32s alignedWidth;               ///< roiWidth rounded up to 16
    Lum32s state[3];                   ///< 0, 0, 1
    Lum32s roiWidth;
    Lum32s allOnes;
    Lum32s mode;  ///< bitModeEmpty if no position is set, otherwise 0
};

namespace lumcv {

inline constexpr Lum32s bitModeEmpty = 3;

/// Analyses the mask and lays record and storage at the first aligned place from `block` on, which holds
/// bitRecordBytes() at least. Of a rotated mask the anchor is that of the caller's, rotated.
LumiMorphBitRecord* layBitRecord(const CallerMask& mask, int64_t roiWidth, void* block);

/// The end of the storage.
void* endOf(const LumiMorphBitRecord& record);

}  // namespace lumcv

/// The record of the 64-bit functions, at the first aligned place of its block: both records follow it, each at the
/// first aligned place behind what lies before it.
struct LumiDilateErodeSpec
{
    const lumcv::ElementRecord<Lum64s>* pElement;
    const LumiMorphBitRecord* pBits;
};

namespace lumcv {

/// Lays the 64-bit record for a mask; the block need not be aligned.
LumiDilateErodeSpec* layDilateErodeSpec(const CallerMask& mask, int64_t roiWidth, void* block);

}  // namespace lumcv
