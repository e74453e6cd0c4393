/**
 * @file
 * @brief Of the C++ layer: a status that can be read or thrown.
 */
#ifndef LUMCV_STATUS_HPP
#define LUMCV_STATUS_HPP

#include <string_view>

#ifdef __cpp_exceptions
#include <stdexcept>
#include <string>
#endif

#include "types.h"

namespace lumcv {

/**
 * @addtogroup cpp
 * @{
 */

/** What a call returned, and which function it was. */
class [[nodiscard]] Status
{
  public:
    /**
     * Of a function's result; the name is for messages.
     *
     * @param code     what the function returned
     * @param function its name, in static memory
     */
    constexpr explicit Status(LumStatus code, std::string_view function = {}) : code_(code), function_(function) {}

    /** @return the status as the function returned it */
    constexpr LumStatus code() const
    {
        return code_;
    }
    /** @return the name of the function */
    constexpr std::string_view function() const
    {
        return function_;
    }
    /** @return whether the call succeeded and had nothing to say: #lumOk */
    constexpr bool ok() const
    {
        return code_ == lumOk;
    }
    /** @return whether the result is complete, and the status says something about it */
    constexpr bool isWarning() const
    {
        return code_ > lumOk;
    }
    /** @return whether the call failed */
    constexpr bool isError() const
    {
        return code_ < lumOk;
    }
    /** @return the status as it is spelled in lumcv/types.h, such as "lumErrStep" */
    constexpr std::string_view name() const
    {
        return meaning().name;
    }
    /** @return what the status means, in words */
    constexpr std::string_view text() const
    {
        return meaning().text;
    }

#ifdef __cpp_exceptions
    /** Throws Error if the call failed; a warning passes. */
    void throwIfError() const;
#endif

  private:
    struct Meaning
    {
        LumStatus code;
        std::string_view name;
        std::string_view text;
    };
    static constexpr Meaning meanings[] = {
        {lumOk, "lumOk", "success"},
        {lumWrnEmptyMask, "lumWrnEmptyMask", "the mask selects no pixel"},
        {lumWrnZeroDivisor, "lumWrnZeroDivisor", "a relative norm with a zero divisor"},
        {lumWrnBufferTooLarge, "lumWrnBufferTooLarge", "the queried size exceeds 2147483647"},
        {lumWrnLineListFull, "lumWrnLineListFull", "the list of lines is full"},
        {lumWrnKernelNotSymmetric, "lumWrnKernelNotSymmetric", "the layer kernel is not symmetric"},
        {lumWrnRoiClipped, "lumWrnRoiClipped", "the ROI was cut at the image, or lies wholly outside it"},
        {lumErrGeneric, "lumErrGeneric", "an internal limit"},
        {lumErrArgument, "lumErrArgument", "a parameter has a value that the function cannot use"},
        {lumErrSize, "lumErrSize", "width or height below 1, or another length below its minimum"},
        {lumErrHoughRegion, "lumErrHoughRegion", "the region of the Hough space cannot be used"},
        {lumErrNullPointer, "lumErrNullPointer", "a required pointer is null"},
        {lumErrDivideByZero, "lumErrDivideByZero", "division by a zero constant"},
        {lumErrOutOfRange, "lumErrOutOfRange", "a point or value outside its allowed range"},
        {lumErrContext, "lumErrContext", "the record's identity word does not match"},
        {lumErrMode, "lumErrMode", "a mode code outside the allowed set"},
        {lumErrStep, "lumErrStep", "a stride below a row's width in bytes, or not positive"},
        {lumErrThreshold, "lumErrThreshold", "a negative threshold"},
        {lumErrMaskSize, "lumErrMaskSize", "a mask size that is not among those allowed"},
        {lumErrAnchor, "lumErrAnchor", "an anchor outside the mask or kernel"},
        {lumErrValue, "lumErrValue", "an enumeration or count outside the allowed set"},
        {lumErrDivisor, "lumErrDivisor", "the divisor of an integer kernel is zero"},
        {lumErrChannelOfInterest, "lumErrChannelOfInterest", "a channel of interest outside 1..3"},
        {lumErrChannels, "lumErrChannels", "a channel count that is not supported"},
        {lumErrMetric, "lumErrMetric", "a distance metric weight not above 0"},
        {lumErrDataType, "lumErrDataType", "an element type code that is not supported"},
        {lumErrStepAlignment, "lumErrStepAlignment", "a stride that is not a multiple of the element size"},
        {lumErrBorder, "lumErrBorder", "a border value that is not allowed"},
        {lumErrNorm, "lumErrNorm", "a norm code that is not allowed"},
        {lumErrFilterType, "lumErrFilterType", "a derivative filter code that is not allowed"},
        {lumErrSizeTooLarge, "lumErrSizeTooLarge", "a size or stride above what the path can work with"},
        {lumErrInPlace, "lumErrInPlace", "source and destination are the same image where this is not allowed"},
    };

    constexpr Meaning meaning() const
    {
        for (const Meaning& candidate : meanings) {
            if (candidate.code == code_) {
                return candidate;
            }
        }
        return {code_, "unknown status", "not a status of this version"};
    }

    LumStatus code_;
    std::string_view function_;
};

#ifdef __cpp_exceptions
/** What Status::throwIfError() throws: its message names the function, the status and its meaning. */
class Error : public std::runtime_error
{
  public:
    /**
     * Of a status that is an error.
     *
     * @param status what the call returned
     */
    explicit Error(Status status)
        : std::runtime_error(std::string(status.function()) + " returned " + std::string(status.name()) + " (" +
                             std::to_string(status.code()) + "): " + std::string(status.text())),
          status_(status)
    {
    }
    /** @return what the call returned */
    Status status() const
    {
        return status_;
    }

  private:
    Status status_;
};

inline void Status::throwIfError() const
{
    if (isError()) {
        throw Error(*this);
    }
}
#endif

/** @} */

}  // namespace lumcv

#endif
