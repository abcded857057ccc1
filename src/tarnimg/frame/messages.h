#pragma once

// The words in which functors and stations report failures. %1 is the operator, "cClass::operator ()".
namespace frame {

constexpr char s_invalidImage[] = "%1: Invalid image.";
constexpr char s_typesMustBeEqual[] = "%1: Image types must be equal.";
constexpr char s_channelsMustBeEqual[] = "%1: Number of channels must be equal.";
constexpr char s_sizesMustBeEqual[] = "%1: Image sizes must be equal.";
constexpr char s_firstMustNotBeSmaller[] = "%1: First image must not be smaller than second image.";
constexpr char s_unsupportedImage[] = "%1: Unsupported image format (%2) or channel count (%3).";
constexpr char s_wrongWidthOfU[] = "%1: U has wrong width.";
constexpr char s_wrongWidthOfV[] = "%1: V has wrong with."; // as hosts know it
constexpr char s_wrongHeightOfU[] = "%1: U has wrong height.";
constexpr char s_wrongHeightOfV[] = "%1: V has wrong height.";
constexpr char s_twistMustBe3x4[] = "Color twist matrix must be 3x4"; // follows s_failure
constexpr char s_failure[] = "%1: %2";

} // namespace frame
