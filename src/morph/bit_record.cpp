// Lays the 1-bit record, alone or as part of the 64-bit functions' record.
#include "morph/bit_record.hpp"

#include "morph/morph_sizes.hpp"

namespace lumcv {

LumiMorphBitRecord* layBitRecord(const CallerMask& mask, int64_t roiWidth, void* block)
{
    auto* const record = alignedIn<LumiMorphBitRecord>(block);
    const int64_t positions = mask.width * mask.height;
    auto* const copy = reinterpret_cast<Lum8u*>(record + 1);
    Lum8u* const inverted = copy + roundedUp(positions, 16);
    Lum8u* const set = inverted + roundedUp(positions, 16);
    bool isEmpty = true;
    for (int64_t i = 0; i < positions; ++i) {
        const bool isSet = mask.isSet(i);
        copy[i] = mask.at(i);
        inverted[i] = isSet ? 0 : 0xFF;
        set[i] = isSet ? 0xFF : 0;
        isEmpty = isEmpty && !isSet;
    }
    const auto width = static_cast<Lum32s>(mask.width), height = static_cast<Lum32s>(mask.height);
    const Lum32s anchorX = mask.isRotated ? width / 2 : (width - 1) / 2;
    const Lum32s anchorY = mask.isRotated ? height / 2 : (height - 1) / 2;
    *record = {copy,
               inverted,
               set,
               {0, 0},
               width,
               height,
               anchorX,
               anchorY,
               width - 1 - anchorX,
               height - 1 - anchorY,
               static_cast<Lum32s>(roundedUp(roiWidth, 16)),
               {0, 0, 1},
               static_cast<Lum32s>(roiWidth),
               -1,
               isEmpty ? bitModeEmpty : 0};
    return record;
}

void* endOf(const LumiMorphBitRecord& record)
{
    return const_cast<Lum8u*>(record.pSetMask) + roundedUp(int64_t{record.maskWidth} * record.maskHeight, 16);
}

LumiDilateErodeSpec* layDilateErodeSpec(const CallerMask& mask, int64_t roiWidth, void* block)
{
    auto* const spec = alignedIn<LumiDilateErodeSpec>(block);
    auto* const element = reinterpret_cast<ElementRecord<Lum64s>*>(spec + 1);
    spec->pElement = element;
    spec->pBits = layBitRecord(mask, roiWidth, layElement(mask, element));
    return spec;
}

}  // namespace lumcv
