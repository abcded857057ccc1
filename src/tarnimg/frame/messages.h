#pragma once

// The words in which functors and stations report failures. %1 is the operator, "cClass::operator ()".
namespace frame {

constexpr char s_invalidImage[] = "%1: Invalid image.";
constexpr char s_typesMustBeEqual[] = "%1: Image types must be equal.";
constexpr char s_channelsMustBeEqual[] = "%1: Number of channels must be equal.";
constexpr char s_sizesMustBeEqual[] = "%1: Image sizes must be equal.";
constexpr char s_firstMustNotBeSmaller[] = "%1: First image must not be smaller than second image.";
constexpr char s_unsupportedImage[] = "%1: Unsupported image format (%2) or channel count (%3).";
constexpr char s_failure[] = "%1: %2";

} // namespace frame
