/**
 * @file
 * @brief Types, status codes and enumerations that all families share.
 */
#ifndef LUMCV_TYPES_H
#define LUMCV_TYPES_H

#include <stdint.h>

/**
 * @defgroup types Types, statuses and enumerations
 * @brief What all families share.
 *
 * @{
 */

/** Marks what liblumcv.so exports. */
#define LUMCV_API __attribute__((visibility("default")))

typedef uint8_t Lum8u;   /**< unsigned 8-bit element */
typedef int8_t Lum8s;    /**< signed 8-bit element */
typedef uint16_t Lum16u; /**< unsigned 16-bit element */
typedef int16_t Lum16s;  /**< signed 16-bit element */
typedef uint32_t Lum32u; /**< unsigned 32-bit element */
typedef int32_t Lum32s;  /**< signed 32-bit element */
typedef int64_t Lum64s;  /**< signed 64-bit element */
typedef float Lum32f;    /**< IEEE binary32 element */
typedef double Lum64f;   /**< IEEE binary64 element */

/** Width and height in pixels. */
typedef struct LumiSize
{
    Lum32s width;  /**< pixels in a row */
    Lum32s height; /**< rows */
} LumiSize;

/** Width and height in pixels, for the 64-bit entry points. */
typedef struct LumiSizeL
{
    Lum64s width;  /**< pixels in a row */
    Lum64s height; /**< rows */
} LumiSizeL;

/** A pixel's place: column and row. */
typedef struct LumiPoint
{
    Lum32s x; /**< column */
    Lum32s y; /**< row */
} LumiPoint;

/** A place between pixels: column and row. */
typedef struct LumiPoint32f
{
    Lum32f x; /**< column */
    Lum32f y; /**< row */
} LumiPoint32f;

/** A pixel's place for the 64-bit entry points. */
typedef struct LumiPointL
{
    Lum64s x; /**< column */
    Lum64s y; /**< row */
} LumiPointL;

/** A rectangle of pixels. */
typedef struct LumiRect
{
    Lum32s x;      /**< first column */
    Lum32s y;      /**< first row */
    Lum32s width;  /**< columns */
    Lum32s height; /**< rows */
} LumiRect;

/** A line in polar form. */
typedef struct LumiPointPolar
{
    Lum32f rho;   /**< distance from the origin, in pixels */
    Lum32f theta; /**< angle in radians */
} LumiPointPolar;

/** An analysed structuring element, laid in the caller's block by the Init functions of morphology. */
typedef struct LumiMorphMaskRecord LumiMorphMaskRecord;

/**
 * The geometry of an image pyramid, laid in the caller's block. Level 0 is the full-size image; every array has
 * `level + 1` entries. Sizes and scales are filled by Init; what is the caller's to fill is zero after it.
 */
typedef struct LumiPyramidRecord
{
    void** ppLayers;       /**< first pixel of each level's image; filled by the caller */
    LumiSize* pLayerSizes; /**< size of each level */
    Lum64f* pLayerScales;  /**< scale of each level: the power -i of the reduction rate; 1.0 for level 0 */
    Lum32s* pLayerSteps;   /**< stride of each level's image, in bytes; filled by the caller */
    void* pLayerRecord;    /**< place for the caller's layer record */
    Lum32s level;          /**< index of the last level */
} LumiPyramidRecord;

/** A connected region: what a flood fill reports. */
typedef struct LumiConnectedComp
{
    Lum64f area;     /**< number of filled pixels */
    Lum64f value[3]; /**< the new value of each channel; entries beyond the image's channels are 0 */
    LumiRect rect;   /**< bounding box */
} LumiConnectedComp;

/** What identifies a build of the library. */
typedef struct LumLibraryVersion
{
    Lum32s major;          /**< year of the release */
    Lum32s minor;          /**< minor release */
    Lum32s majorBuild;     /**< update of the release */
    Lum32s build;          /**< revision number, as a bit pattern */
    char targetCpu[4];     /**< processor code, zero-filled */
    const char* Name;      /**< name of the library */
    const char* Version;   /**< release and revision as text */
    const char* BuildDate; /**< date of the build */
} LumLibraryVersion;

/**
 * What an operation returns: #lumOk, a negative error or a positive warning (lumErr..., lumWrn...).
 *
 * A function's checks have a fixed order, which its family documents; the first that fails decides the status. After an
 * error nothing has been written through the output pointers, unless a family's documentation says otherwise; a warning
 * comes with a complete result.
 */
typedef Lum32s LumStatus;

/** The values of LumStatus. */
enum
{
    lumOk = 0,                     /**< success */
    lumWrnEmptyMask = 1,           /**< the mask selects no pixel; values are 0.0 and indices (0, 0) */
    lumWrnZeroDivisor = 2,         /**< relative norm with a zero divisor; the result is infinite or not-a-number */
    lumWrnBufferTooLarge = 12,     /**< the queried size exceeds 2147483647; it is stored all the same */
    lumWrnLineListFull = 33,       /**< the list of lines is full; those found so far are valid */
    lumWrnKernelNotSymmetric = 38, /**< the layer kernel is not symmetric; its left half is used, mirrored */
    lumWrnRoiClipped = 48,         /**< the ROI was cut at the image, or lies wholly outside it */
    lumErrGeneric = -2,            /**< an internal limit */
    lumErrArgument = -5,           /**< a parameter has a value that the function cannot use */
    lumErrSize = -6,               /**< width or height below 1, or another length below its minimum */
    lumErrHoughRegion = -7,        /**< the region of the Hough space cannot be used */
    lumErrNullPointer = -8,        /**< a required pointer is null */
    lumErrDivideByZero = -10,      /**< division by a zero constant */
    lumErrOutOfRange = -11,        /**< a point or value outside its allowed range */
    lumErrContext = -13,           /**< the record's identity word does not match */
    lumErrMode = -14,              /**< a mode code outside the allowed set */
    lumErrStep = -16,              /**< a stride below a row's width in bytes, or not positive */
    lumErrThreshold = -19,         /**< a negative threshold */
    lumErrMaskSize = -33,          /**< a mask size that is not among those allowed */
    lumErrAnchor = -34,            /**< an anchor outside the mask or kernel */
    lumErrValue = -47,             /**< an enumeration or count outside the allowed set */
    lumErrDivisor = -51,           /**< the divisor of an integer kernel is zero */
    lumErrChannelOfInterest = -52, /**< a channel of interest outside 1..3 */
    lumErrChannels = -53,          /**< a channel count that is not supported */
    lumErrMetric = -56,            /**< a distance metric weight not above 0 */
    lumErrDataType = -59,          /**< an element type code that is not supported */
    lumErrStepAlignment = -108,    /**< a stride that is not a multiple of the element size */
    lumErrBorder = -225,           /**< a border value that is not allowed */
    lumErrNorm = -229,             /**< a norm code that is not allowed */
    lumErrFilterType = -230,       /**< a derivative filter code that is not allowed */
    lumErrSizeTooLarge = -232,     /**< a size or stride above what the path can work with */
    lumErrInPlace = -9998          /**< source and destination are the same image where this is not allowed */
};

/** Element type code. */
typedef Lum32s LumDataType;

/** The values of LumDataType. */
enum
{
    lumType8u = 1,   /**< Lum8u */
    lumType16u = 5,  /**< Lum16u */
    lumType16s = 7,  /**< Lum16s */
    lumType32s = 11, /**< Lum32s */
    lumType32f = 13, /**< Lum32f */
    lumType64f = 19  /**< Lum64f */
};

/**
 * How pixels outside the ROI are obtained: one mode in the low four bits, and by bitwise or a flag for each side that
 * lies in the caller's memory.
 *
 * A flagged side is read from memory next to the ROI, as far as the operation reaches and no further; the other sides
 * are synthesised by the mode. #lumBorderInMem alone says that all four sides lie in memory, and needs no mode. For
 * example `lumBorderMirror | lumBorderInMemTop | lumBorderInMemBottom` filters a band in the middle of an image: the
 * rows above and below it are real, and left and right are mirrored.
 *
 * The value is compared as unsigned. Filters accept the modes #lumBorderReplicate, #lumBorderMirror and
 * #lumBorderConstant and values up to 255, morphology #lumBorderNeutral as well and values up to 4095; anything else is
 * #lumErrBorder.
 */
typedef Lum32s LumiBorderType;

/** The values of LumiBorderType. */
enum
{
    lumBorderReplicate = 1, /**< the nearest edge pixel is repeated */
    lumBorderMirror = 3,    /**< reflection about the edge pixel, which is not repeated */
    lumBorderNeutral = 5,   /**< a constant that leaves the result unchanged; morphology only */
    lumBorderConstant = 6,  /**< the value given as the border value */

    lumBorderInMemTop = 0x10,    /**< the rows above the ROI are read from memory */
    lumBorderInMemBottom = 0x20, /**< the rows below the ROI are read from memory */
    lumBorderInMemLeft = 0x40,   /**< the columns left of the ROI are read from memory */
    lumBorderInMemRight = 0x80,  /**< the columns right of the ROI are read from memory */
    lumBorderInMem = 0xF0,       /**< all four sides are read from memory */

    lumBorderStageInMemTop = 0x100,    /**< as #lumBorderInMemTop, for the first stage of a two-stage morphology */
    lumBorderStageInMemBottom = 0x200, /**< as #lumBorderInMemBottom, for the first stage */
    lumBorderStageInMemLeft = 0x400,   /**< as #lumBorderInMemLeft, for the first stage */
    lumBorderStageInMemRight = 0x800   /**< as #lumBorderInMemRight, for the first stage */
};

/** Size of a fixed filter mask. */
typedef Lum32s LumiMaskSize;

/** The values of LumiMaskSize. */
enum
{
    lumMask3x3 = 33, /**< three by three pixels */
    lumMask5x5 = 55  /**< five by five pixels */
};

/** Norm selector, bit-coded. */
typedef Lum32s LumiNorm;

/** The values of LumiNorm. */
enum
{
    lumNormInf = 1, /**< the largest magnitude */
    lumNormL1 = 2,  /**< the sum of magnitudes */
    lumNormL2 = 4   /**< the root of the sum of squares */
};

/** Distance measure, counted. */
typedef Lum32s LumiDistanceNorm;

/** The values of LumiDistanceNorm. */
enum
{
    lumDistanceNormInf = 0, /**< chessboard distance: the larger of the two differences */
    lumDistanceNormL1 = 1,  /**< city-block distance: the sum of the two differences */
    lumDistanceNormL2 = 2   /**< Euclidean distance */
};

/** @} */

#endif
