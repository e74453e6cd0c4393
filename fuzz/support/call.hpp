// A call as the fuzzer sees it: images and blocks with a part to play, a few numbers, and the arguments that may be
// made wrong on purpose.
//
// tryCall() makes the call twice. The second time every image and block stands elsewhere, at other alignments and
// against the other page, scratch holds other bytes and the reported cache size differs. Both calls must return the
// same status and write the same values, and only where they may. With wrong arguments the status must be that of one
// of them and nothing may be written.
#pragma once

#include <lumcv/lumcv.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/support/choices.hpp"
#include "fuzz/support/fault_report.hpp"
#include "support/promised_margins.hpp"

namespace lumcv::fuzz {

enum class Element
{
    U8,
    S8,
    U16,
    S16,
    S32,
    F32,
    F64
};

template <typename T>
constexpr Element elementOf()
{
    using U = std::remove_const_t<T>;
    if constexpr (std::is_same_v<U, Lum8u>)
        return Element::U8;
    else if constexpr (std::is_same_v<U, Lum8s>)
        return Element::S8;
    else if constexpr (std::is_same_v<U, Lum16u>)
        return Element::U16;
    else if constexpr (std::is_same_v<U, Lum16s>)
        return Element::S16;
    else if constexpr (std::is_same_v<U, Lum32s>)
        return Element::S32;
    else if constexpr (std::is_same_v<U, Lum32f>)
        return Element::F32;
    else {
        static_assert(std::is_same_v<U, Lum64f>);
        return Element::F64;
    }
}

// The code of an element type in functions that take the type as an argument.
constexpr LumDataType typeCode(Element element)
{
    switch (element) {
        case Element::U8:
            return lumType8u;
        case Element::U16:
            return lumType16u;
        case Element::S16:
            return lumType16s;
        case Element::S32:
            return lumType32s;
        case Element::F32:
            return lumType32f;
        case Element::F64:
            return lumType64f;
        case Element::S8:
            break;  // no function takes it
    }
    return 0;
}

enum class Role
{
    Read,     // filled before the call, the same after it
    Mask,     // likewise, with many zeros
    Updated,  // filled before the call and written by it
    Written,  // written by the call
    Scratch,  // written by the call, of no value after it
    Record,   // laid by the call's preparation, the same after the call
    Laid      // a record that the call lays; its bytes depend on its address
};

struct ImageOperand
{
    Role role;
    Element element;
    int channels = 1;
    test::Margins margins = {};
    // For functions that take an array of row pointers: which row each of them is. A plain image has none.
    std::vector<int> rowPointers = {};
    // Columns and rows that the image has beyond the ROI, to its right and below. They belong to it: a table's, say.
    LumiSize extra = {0, 0};
    int leastExtra = 0;  // how many of these columns the stride is held against
    // Of an updated image: half of its elements are zero, as in a mask.
    bool halfZero = false;
    // Of floats: a value that a quarter of the elements have, where a comparison turns on it.
    std::optional<Lum32f> often = {};
    // Of a 1-bit image, whose elements are the bytes that its pixels lie in: which bits of a row may be written.
    int firstBit = 0, bitCount = 0;
};

struct BlockOperand
{
    Role role;
    std::size_t bytes;
    Element element = Element::U8;
    bool mayBeNull = false;  // null is no violation
};

// The arguments of one call. Images come first in the order of the function's arguments, then blocks in that order.
struct Arguments
{
    std::vector<void*> images;  // first pixels; for an image with row pointers the array
    std::vector<Lum64s> steps;
    std::vector<void*> blocks;
    Lum64s width = 1, height = 1;
    LumiSizeL mask = {1, 1};
    Lum32s kernelSize = 0, anchor = 0, borderType = 0, divisor = 1, dataType = 0, channels = 0;
    Lum32f parameter = 0;

    template <typename T>
    T* image(std::size_t i) const
    {
        return static_cast<T*>(images[i]);
    }
    template <typename T>
    T* const* rows(std::size_t i) const
    {
        return static_cast<T* const*>(images[i]);
    }
    template <typename T>
    T* block(std::size_t i) const
    {
        return static_cast<T*>(blocks[i]);
    }
    Lum32s step(std::size_t i) const
    {
        return Lum32s(steps[i]);
    }
    LumiSize size() const
    {
        return {Lum32s(width), Lum32s(height)};
    }
    LumiSizeL sizeL() const
    {
        return {width, height};
    }
    // The size in the type that a function takes.
    template <typename Size>
    Size sizeAs() const
    {
        return {decltype(Size::width)(width), decltype(Size::height)(height)};
    }
};

// A wrong argument and the statuses it may lead to.
struct Violation
{
    std::string name;
    std::vector<LumStatus> statuses;
    std::function<void(Arguments&)> apply;
};

struct Call
{
    std::string function;
    Arguments arguments;  // the numbers; pointers and strides are filled in
    std::vector<ImageOperand> images;
    std::vector<BlockOperand> blocks;
    std::vector<Violation> violations = {};
    std::function<void(Arguments&)> prepare = {};  // lays records
    std::function<LumStatus(const Arguments&)> call;
    bool looseStep = false;       // strides are held against the width in pixels, and not against the element size
    bool freeStep = false;        // strides are refused if they are negative, and for nothing else
    bool alignmentFirst = false;  // of a stride: whether it is a whole number of elements, and only then its size
    bool longStep = false;        // strides and sizes have 64 bits
    bool ignoresSize = false;
    bool ignoresStep = false;  // strides are not tested

    std::string text() const;
};

// Adds a wrong argument that has one status.
void addViolation(Call& call, std::string name, LumStatus status, std::function<void(Arguments&)> apply);

void tryCall(Choices& choices, Call call);

// While one lives, it takes down what the calls of its thread return and write. Its digest is the same wherever images
// and blocks stand, on every processor level and with every compiler; all not-a-numbers are taken for the same.
class Recorder
{
  public:
    // Twins: the second call of each case is made along with a third on another thread. These two read the same images,
    // blocks and records.
    enum class Mode
    {
        Alone,
        WithTwins
    };
    explicit Recorder(Mode mode);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    Mode mode() const
    {
        return mode_;
    }
    void add(const std::string& text, LumStatus status);
    void add(const unsigned char* values, std::size_t bytes, Element element);

    std::uint64_t digest() const
    {
        return digest_;
    }
    // What was called, with which statuses.
    const std::string& text() const
    {
        return text_;
    }

  private:
    void mix(std::uint64_t word);

    const Mode mode_;
    std::uint64_t digest_ = 1;
    std::string text_;
};

// Sizes around lane counts for the most part; once in a while enough pixels for the treatment of large images.
LumiSize chooseSize(Choices& choices);

/// A call of a function on a ROI of a size that is chosen.
Call beginCall(Choices& choices, const std::string& name);
int chooseDivisor(Choices& choices);
// A border value that filters accept, and one that they do not.
int chooseBorder(Choices& choices);
int chooseWrongBorder(Choices& choices);

// Makes one case of a function.
using Run = std::function<void(Choices&, const std::string& function)>;

// The kind of element that a number of 4 or 8 bytes is filled as; it decides the number's alignment.
template <typename Number>
constexpr Element numberElement = sizeof(Number) == 4 ? Element::S32 : Element::F64;

// A function to be fuzzed.
struct Target
{
    std::string function;
    Run run;
};

// What many scratch queries look like: the size of the ROI alone decides, and may ask for more than 31 bits count.
using RoiQuery = LumStatus (*)(LumiSize, Lum32s*);
Run roiQuery(RoiQuery query);
// The size that it gives for the ROI of a call.
std::size_t bytesOf(RoiQuery query, const Call& call);

// The targets of one file. A global object of this type enters them into the list.
class Targets
{
  public:
    Targets(std::vector<Target> targets);
    static std::vector<Target>& all();
};

// One case of a target that the choices pick.
void runOne(Choices& choices);

}  // namespace lumcv::fuzz
