// Lays out a call's images and blocks, makes the call, and holds against each other what must be the same.
#include "fuzz/support/call.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <thread>
#include <utility>

#include "support/max_cache_size.hpp"

namespace lumcv::fuzz {

namespace {

using test::Guard;
using test::GuardedBlock;
using test::Random;
using ByteImage = test::Image<Lum8u>;

thread_local Recorder* current = nullptr;  // what takes down this thread's calls

std::size_t sizeOf(Element element)
{
    switch (element) {
        case Element::U8:
        case Element::S8:
            return 1;
        case Element::U16:
        case Element::S16:
            return 2;
        case Element::S32:
        case Element::F32:
            return 4;
        case Element::F64:
            return 8;
    }
    std::abort();
}

template <typename T>
void fillAs(unsigned char* to, std::size_t bytes, Random& random, test::Values values)
{
    for (std::size_t at = 0; at + sizeof(T) <= bytes; at += sizeof(T)) {
        const T value = random.value<T>(values);
        std::memcpy(to + at, &value, sizeof(T));
    }
}

void fillElements(unsigned char* to, std::size_t bytes, Element element, Random& random, test::Values values)
{
    switch (element) {
        case Element::U8:
        case Element::S8:
            return fillAs<Lum8u>(to, bytes, random, values);
        case Element::U16:
            return fillAs<Lum16u>(to, bytes, random, values);
        case Element::S16:
            return fillAs<Lum16s>(to, bytes, random, values);
        case Element::S32:
            return fillAs<Lum32s>(to, bytes, random, values);
        case Element::F32:
            return fillAs<Lum32f>(to, bytes, random, values);
        case Element::F64:
            return fillAs<Lum64f>(to, bytes, random, values);
    }
}

// What scratch holds: many bytes, and none that matters.
void fillAnyhow(unsigned char* to, std::size_t bytes, Random& random)
{
    while (bytes > 0) {
        const std::uint64_t bits = random.bits();
        const std::size_t count = bytes < sizeof bits ? bytes : sizeof bits;
        std::memcpy(to, &bits, count);
        to += count;
        bytes -= count;
    }
}

// Whether two runs of elements are the same bits, with all not-a-numbers taken for the same.
bool sameElements(const unsigned char* a, const unsigned char* b, std::size_t bytes, Element element)
{
    if (std::memcmp(a, b, bytes) == 0)
        return true;
    const auto same = [=]<typename T>(T) {
        for (std::size_t at = 0; at < bytes; at += sizeof(T)) {
            T x, y;
            std::memcpy(&x, a + at, sizeof x);
            std::memcpy(&y, b + at, sizeof y);
            if (std::memcmp(&x, &y, sizeof x) != 0 && !(std::isnan(x) && std::isnan(y)))
                return false;
        }
        return true;
    };
    return element == Element::F32 ? same(Lum32f{}) : element == Element::F64 && same(Lum64f{});
}

Guard chooseGuard(Random& random)
{
    return random.oneIn(2) ? Guard::After : Guard::Before;
}

// An image of any element type as an image of bytes, so that one type holds them all.
ByteImage placeImage(const ImageOperand& operand, const Arguments& arguments, Random& random)
{
    const int elementBytes = int(sizeOf(operand.element));
    test::Layout layout;
    layout.width = int(arguments.width) + operand.extra.width;
    layout.height = int(arguments.height) + operand.extra.height;
    layout.channels = operand.channels * elementBytes;
    layout.margins = operand.margins;
    layout.guard = chooseGuard(random);
    layout.gap = random.oneIn(3) ? 0 : elementBytes * int(random.between(1, 40));
    layout.offset = random.oneIn(2) ? 0 : elementBytes * int(random.between(1, 64 / elementBytes));
    return ByteImage(layout);
}

// A block with some bytes between it and the page that it stands against, so that every alignment occurs.
class PlacedBlock
{
  public:
    PlacedBlock(std::size_t bytes, std::size_t alignment, Random& random)
        : bytes_(bytes),
          offset_(random.oneIn(2) ? 0 : std::size_t(random.between(0, 64)) / alignment * alignment),
          block_(bytes + offset_, chooseGuard(random))
    {
    }

    unsigned char* data() const
    {
        return block_.guard() == Guard::Before ? block_.data() + offset_ : block_.data();
    }
    std::size_t size() const
    {
        return bytes_;
    }

    bool surroundingsIntact() const
    {
        const std::size_t first = block_.guard() == Guard::Before ? 0 : bytes_;
        for (std::size_t i = first; i < first + offset_; ++i)
            if (block_.data()[i] != block_.original(i))
                return false;
        return bool(block_.slackIntact());
    }

  private:
    std::size_t bytes_, offset_;
    GuardedBlock block_;
};

std::vector<unsigned char> bytesOf(const ByteImage& image)
{
    return {image.bytes(), image.bytes() + image.byteCount()};
}

std::vector<unsigned char> bytesOf(const PlacedBlock& block)
{
    return {block.data(), block.data() + block.size()};
}

// The images and blocks of one call in memory. `content` decides what they hold, `place` where they stand and what
// scratch holds.
class Memory
{
  public:
    Memory(const Call& call, std::uint64_t content, std::uint64_t place) : call_(call), arguments(call.arguments)
    {
        Random values(content), places(place);
        const test::Values kinds[] = {test::Values::Ordinary, test::Values::Ordinary, test::Values::Extreme,
                                      test::Values::NonFinite};
        const test::Values kind = kinds[values.between(0, 3)];
        for (const ImageOperand& operand : call.images) {
            images_.push_back(placeImage(operand, arguments, places));
            fill(images_.back(), operand, values, kind);
        }
        // pointers into the images stay valid from here on
        for (std::size_t i = 0; i < images_.size(); ++i) {
            arguments.steps.push_back(images_[i].step());
            arguments.images.push_back(call.images[i].rowPointers.empty() ? images_[i].pixels() : rowArray(i, places));
        }
        for (const BlockOperand& operand : call.blocks) {
            // pixels and taps are aligned, records and scratch need not be
            const std::size_t alignment =
                operand.role == Role::Scratch || operand.role == Role::Record || operand.role == Role::Laid
                    ? 1
                    : sizeOf(operand.element);
            blocks_.push_back(std::make_unique<PlacedBlock>(operand.bytes, alignment, places));
            PlacedBlock& block = *blocks_.back();
            if (operand.role == Role::Read)
                fillElements(block.data(), block.size(), operand.element, values, kind);
            else if (operand.role != Role::Written)
                fillAnyhow(block.data(), block.size(), places);
            arguments.blocks.push_back(block.data());
        }
        if (call.prepare)
            call.prepare(arguments);
        for (const ByteImage& image : images_)
            imagesBefore_.push_back(bytesOf(image));
        for (const auto& block : blocks_)
            blocksBefore_.push_back(bytesOf(*block));
    }

    // Fails unless what the call must leave alone is as it was: after an error all but scratch and records that were to
    // be laid anew, after success all but the pixels that are written.
    void expectUntouched(bool success) const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            const Role role = call_.images[i].role;
            const bool written = success && (role == Role::Updated || role == Role::Written);
            const std::string name = "image " + std::to_string(i);
            if (!written && bytesOf(images_[i]) != imagesBefore_[i])
                fail(name + " was written");
            if (!bitsBesideIntact(i))
                fail(name + ": bits beside the pixels were written");
            if (const testing::AssertionResult intact = images_[i].gapsIntact(); !intact)
                fail(name + ": " + intact.message());
        }
        for (std::size_t i = 0; i < blocks_.size(); ++i) {
            const Role role = call_.blocks[i].role;
            const bool written = role == Role::Scratch || (success && (role == Role::Written || role == Role::Laid));
            const std::string name = "block " + std::to_string(i);
            if (!written && bytesOf(*blocks_[i]) != blocksBefore_[i])
                fail(name + " was written");
            if (!blocks_[i]->surroundingsIntact())
                fail(name + ": bytes beside it were written");
        }
        for (const auto& array : rowArrays_)
            if (!array->surroundingsIntact())
                fail("bytes beside the array of row pointers were written");
    }

    void expectSameResults(const Memory& other) const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            const std::size_t rowBytes = std::size_t(images_[i].width()) * images_[i].channels();
            for (int y = 0; y < images_[i].height(); ++y)
                if (!sameElements(images_[i].row(y), other.images_[i].row(y), rowBytes, call_.images[i].element))
                    fail("row " + std::to_string(y) + " of image " + std::to_string(i) +
                         " depends on where things stand or on what scratch held");
        }
        for (std::size_t i = 0; i < blocks_.size(); ++i)
            if (call_.blocks[i].role == Role::Written && bytesOf(*blocks_[i]) != bytesOf(*other.blocks_[i]))
                fail("block " + std::to_string(i) + " depends on where things stand");
    }

    // Takes another's images, blocks and records in the place of its own, wherever a call only reads them.
    void readFrom(const Memory& other)
    {
        for (std::size_t i = 0; i < images_.size(); ++i)
            if (call_.images[i].role == Role::Read || call_.images[i].role == Role::Mask) {
                arguments.images[i] = other.arguments.images[i];
                arguments.steps[i] = other.arguments.steps[i];
            }
        for (std::size_t i = 0; i < blocks_.size(); ++i)
            if (call_.blocks[i].role == Role::Read || call_.blocks[i].role == Role::Record)
                arguments.blocks[i] = other.arguments.blocks[i];
    }

    // What a successful call has written.
    void record(Recorder& recorder) const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            const ImageOperand& operand = call_.images[i];
            const std::size_t rowBytes = std::size_t(images_[i].width()) * images_[i].channels();
            if (operand.role == Role::Updated || operand.role == Role::Written)
                for (int y = 0; y < images_[i].height(); ++y)
                    recorder.add(images_[i].row(y), rowBytes, operand.element);
        }
        for (std::size_t i = 0; i < blocks_.size(); ++i)
            if (call_.blocks[i].role == Role::Written)
                recorder.add(blocks_[i]->data(), blocks_[i]->size(), call_.blocks[i].element);
    }

  private:
    static void fill(ByteImage& image, const ImageOperand& operand, Random& values, test::Values kind)
    {
        if (operand.role == Role::Written)
            return;
        const int width = image.width();
        const test::Margins& m = operand.margins;
        const int pixelBytes = image.channels();
        if (m.any())
            image.forEach(test::Area::WithMargins, [](Lum8u&, int, int, int) {});  // the margins are pixels
        for (int y = -m.top; y < image.height() + m.bottom; ++y) {
            Lum8u* const row = image.row(y) - m.left * pixelBytes;
            const std::size_t bytes = std::size_t(m.left + width + m.right) * pixelBytes;
            fillElements(row, bytes, operand.element, values, kind);
            if (operand.role == Role::Mask || operand.halfZero)
                for (std::size_t i = 0; i < bytes; ++i)
                    if (values.oneIn(2))
                        row[i] = 0;
            if (operand.often)
                for (std::size_t at = 0; at + sizeof(Lum32f) <= bytes; at += sizeof(Lum32f))
                    if (values.oneIn(4))
                        std::memcpy(row + at, &*operand.often, sizeof(Lum32f));
        }
    }

    bool bitsBesideIntact(std::size_t i) const
    {
        const ImageOperand& operand = call_.images[i];
        if (operand.bitCount == 0)
            return true;
        const ByteImage& image = images_[i];
        for (int y = 0; y < image.height(); ++y) {
            const Lum8u* const before = imagesBefore_[i].data() + (image.row(y) - image.bytes());
            for (int bit = 0; bit < 8 * image.width(); ++bit) {
                const bool isPixel = bit >= operand.firstBit && bit < operand.firstBit + operand.bitCount;
                if (!isPixel && ((image.row(y)[bit / 8] ^ before[bit / 8]) >> bit % 8 & 1) != 0)
                    return false;
            }
        }
        return true;
    }

    void* rowArray(std::size_t i, Random& places)
    {
        const std::vector<int>& rows = call_.images[i].rowPointers;
        rowArrays_.push_back(std::make_unique<PlacedBlock>(rows.size() * sizeof(void*), alignof(void*), places));
        void** const array = reinterpret_cast<void**>(rowArrays_.back()->data());
        for (std::size_t j = 0; j < rows.size(); ++j)
            array[j] = images_[i].row(rows[j]);
        return array;
    }

    const Call& call_;
    std::vector<ByteImage> images_;
    std::vector<std::unique_ptr<PlacedBlock>> blocks_, rowArrays_;
    std::vector<std::vector<unsigned char>> imagesBefore_, blocksBefore_;

  public:
    Arguments arguments;
};

// What can be wrong with any call: null pointers, sizes, strides.
std::vector<Violation> commonViolations(const Call& call)
{
    std::vector<Violation> list;
    const auto add = [&](std::string name, std::vector<LumStatus> statuses, std::function<void(Arguments&)> apply) {
        list.push_back({std::move(name), std::move(statuses), std::move(apply)});
    };
    for (std::size_t i = 0; i < call.images.size(); ++i) {
        const ImageOperand& operand = call.images[i];
        const std::string name = "image " + std::to_string(i);
        add(name + " null", {lumErrNullPointer}, [i](Arguments& a) { a.images[i] = nullptr; });
        if (!operand.rowPointers.empty()) {
            for (const std::size_t j : {std::size_t{0}, operand.rowPointers.size() / 2, operand.rowPointers.size() - 1})
                add(name + " row pointer " + std::to_string(j) + " null", {lumErrNullPointer}, [i, j](Arguments& a) {
                    if (a.images[i])
                        a.image<void*>(i)[j] = nullptr;
                });
            continue;
        }
        if (call.ignoresStep)
            continue;
        const Lum64s elementBytes = Lum64s(sizeOf(operand.element));
        const Lum64s rowBytes = call.looseStep
                                    ? call.arguments.width
                                    : (call.arguments.width + operand.leastExtra) * operand.channels * elementBytes;
        for (const Lum64s step : {Lum64s{0}, -rowBytes, rowBytes - (call.looseStep ? 1 : elementBytes), Lum64s{-1}}) {
            if (call.freeStep && step >= 0)
                continue;
            const bool isMisaligned = call.alignmentFirst && step % elementBytes != 0;
            add(name + " step " + std::to_string(step), {isMisaligned ? lumErrStepAlignment : lumErrStep},
                [i, step](Arguments& a) { a.steps[i] = step; });
        }
        if (elementBytes > 1 && !call.looseStep)
            add(name + " step misaligned", {lumErrStepAlignment},
                [=](Arguments& a) { a.steps[i] = rowBytes + elementBytes / 2; });
        if (call.longStep)
            add(name + " step too large", {lumErrSizeTooLarge}, [i](Arguments& a) { a.steps[i] = 0x80000000; });
    }
    for (const ImageOperand& operand : call.images)
        if (operand.rowPointers.empty() && !call.freeStep && !call.ignoresStep) {
            add("width above the strides", {lumErrStep}, [](Arguments& a) { a.width = 1 << 20; });
            break;
        }
    for (std::size_t i = 0; i < call.blocks.size(); ++i)
        if (!call.blocks[i].mayBeNull)
            add("block " + std::to_string(i) + " null", {lumErrNullPointer},
                [i](Arguments& a) { a.blocks[i] = nullptr; });
    if (call.ignoresSize)
        return list;
    for (const Lum64s wrong : {Lum64s{0}, Lum64s{-1}, Lum64s{INT32_MIN}}) {
        add("width " + std::to_string(wrong), {lumErrSize}, [wrong](Arguments& a) { a.width = wrong; });
        add("height " + std::to_string(wrong), {lumErrSize}, [wrong](Arguments& a) { a.height = wrong; });
    }
    return list;
}

// Makes the call. Fails unless the status is that of one of the wrong arguments, or success if there are none, and what
// the call must leave alone is as it was.
LumStatus attempt(const Call& call, const std::vector<Violation>& made, const Memory& memory, LumStatus cacheStatus)
{
    const test::ReportedCacheSize cache(cacheStatus, 1 << 16);
    Arguments arguments = memory.arguments;
    for (const Violation& violation : made)
        violation.apply(arguments);
    const LumStatus status = call.call(arguments);
    bool explained = made.empty() && status == lumOk;
    for (const Violation& violation : made)
        for (const LumStatus possible : violation.statuses)
            explained = explained || possible == status;
    if (!explained)
        fail("status " + std::to_string(status));
    memory.expectUntouched(status == lumOk);
    return status;
}

}  // namespace

std::string Call::text() const
{
    std::ostringstream stream;
    const Arguments& a = arguments;
    stream << function << " on " << a.width << " x " << a.height << ", mask " << a.mask.width << " x " << a.mask.height
           << ", kernel size " << a.kernelSize << ", anchor " << a.anchor << ", border " << a.borderType << ", divisor "
           << a.divisor << ", type " << a.dataType << ", channels " << a.channels << ", parameter " << a.parameter;
    return stream.str();
}

void addViolation(Call& call, std::string name, LumStatus status, std::function<void(Arguments&)> apply)
{
    call.violations.push_back({std::move(name), {status}, std::move(apply)});
}

void tryCall(Choices& choices, Call call)
{
    std::string text = call.text();
    const std::uint64_t content = choices.seed();
    std::vector<Violation> made;
    if (choices.oneIn(3)) {
        std::vector<Violation> possible = commonViolations(call);
        possible.insert(possible.end(), call.violations.begin(), call.violations.end());
        for (int count = choices.between(1, 2); count > 0; --count) {
            made.push_back(possible[std::size_t(choices.between(0, int(possible.size()) - 1))]);
            text += "; " + made.back().name;
        }
    }
    announce(text);

    const Memory first(call, content, choices.seed());
    const LumStatus status = attempt(call, made, first, lumErrGeneric);
    const auto expectSame = [&](const Memory& other, LumStatus otherStatus) {
        if (otherStatus != status)
            fail("two calls returned " + std::to_string(status) + " and " + std::to_string(otherStatus));
        if (status == lumOk)
            first.expectSameResults(other);
    };
    const Memory second(call, content, choices.seed());
    if (current && current->mode() == Recorder::Mode::WithTwins && made.empty()) {
        Memory twin(call, content, ~content);
        twin.readFrom(second);
        LumStatus twinStatus = lumOk;
        std::thread thread([&] {
            announce(text);
            twinStatus = attempt(call, made, twin, lumOk);
        });
        expectSame(second, attempt(call, made, second, lumOk));
        thread.join();
        expectSame(twin, twinStatus);
    } else {
        expectSame(second, attempt(call, made, second, lumOk));
    }
    if (current) {
        current->add(text, status);
        if (status == lumOk)
            first.record(*current);
    }
}

Recorder::Recorder(Mode mode) : mode_(mode)
{
    current = this;
}

Recorder::~Recorder()
{
    current = nullptr;
}

void Recorder::mix(std::uint64_t word)
{
    digest_ = (digest_ ^ word) * 0x9E3779B97F4A7C15u;
    digest_ ^= digest_ >> 32;
}

void Recorder::add(const std::string& text, LumStatus status)
{
    text_ += text_.empty() ? text : " | " + text;
    text_ += ": status " + std::to_string(status);
    mix(std::uint64_t(std::uint32_t(status)));
}

void Recorder::add(const unsigned char* values, std::size_t bytes, Element element)
{
    const auto addElements = [=, this]<typename T, typename Word>(T, Word) {
        for (std::size_t at = 0; at < bytes; at += sizeof(T)) {
            T value;
            std::memcpy(&value, values + at, sizeof value);
            Word word;
            std::memcpy(&word, &value, sizeof word);
            mix(std::isnan(value) ? 0x7FF8u : word);
        }
    };
    if (element == Element::F32)
        return addElements(Lum32f{}, std::uint32_t{});
    if (element == Element::F64)
        return addElements(Lum64f{}, std::uint64_t{});
    for (std::size_t at = 0; at < bytes; at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, values + at, std::min<std::size_t>(8, bytes - at));
        mix(word);
    }
}

LumiSize chooseSize(Choices& choices)
{
    if (choices.rarely(500))
        return {choices.between(1024, 1100), choices.between(505, 525)};
    if (choices.oneIn(10))
        return {choices.between(1, 1500), choices.between(1, 6)};
    if (choices.oneIn(5))
        return {choices.between(1, 12), choices.between(1, 60)};
    return {choices.between(1, 140), choices.between(1, 9)};
}

Call beginCall(Choices& choices, const std::string& name)
{
    Call call;
    call.function = name;
    const LumiSize size = chooseSize(choices);
    call.arguments.width = size.width;
    call.arguments.height = size.height;
    return call;
}

Run roiQuery(RoiQuery query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.violations.push_back({"many pixels", {lumErrSizeTooLarge}, [](Arguments& a) {
                                       a.width = INT32_MAX;
                                       a.height = INT32_MAX;
                                   }});
        call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
        call.call = [=](const Arguments& a) { return query(a.size(), a.block<Lum32s>(0)); };
        tryCall(choices, std::move(call));
    };
}

std::size_t bytesOf(RoiQuery query, const Call& call)
{
    Lum32s bytes = -1;
    if (query(call.arguments.size(), &bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    return std::size_t(bytes);
}

int chooseDivisor(Choices& choices)
{
    const int divisors[] = {1, 1, 1, -1, 2, 3, 16, 256, 1000, -7, 32767, INT32_MAX, INT32_MIN};
    return choices.oneOf(divisors);
}

int chooseBorder(Choices& choices)
{
    if (choices.oneIn(8))
        return lumBorderInMem;
    const int modes[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant};
    const int mode = choices.oneOf(modes);
    return choices.oneIn(2) ? mode : mode | choices.between(0, 15) << 4;
}

int chooseWrongBorder(Choices& choices)
{
    const int wrong[] = {0, 2, 4, 5, 7, 8, 15, 0x10, 0x72, 0xE0, 0x101, 0x1F0, 0xFFF, -1, INT32_MIN};
    return choices.oneOf(wrong);
}

Targets::Targets(std::vector<Target> targets)
{
    for (Target& target : targets)
        all().push_back(std::move(target));
}

std::vector<Target>& Targets::all()
{
    static std::vector<Target> targets;
    return targets;
}

// The target that the number drawn prefers: each number has an order of preference of its own over all names. So it
// does not matter where a target stands in the list, and when one is added, few numbers change their minds.
void runOne(Choices& choices)
{
    const auto number = std::uint64_t(choices.between(0, 0xFFFF));
    const Target* chosen = nullptr;
    std::uint64_t highest = 0;
    for (const Target& target : Targets::all()) {
        std::uint64_t name = 0xcbf29ce484222325u;
        for (const char c : target.function)
            name = (name ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
        const std::uint64_t preference = Random(name ^ number).bits();
        if (!chosen || preference > highest) {
            chosen = &target;
            highest = preference;
        }
    }
    chosen->run(choices, chosen->function);
}

}  // namespace lumcv::fuzz
