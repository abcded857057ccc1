#pragma once

#include <tarnimg/cImgFunctor.h>

/**
 * One channel of an image as an image of one channel, with the range of the source.
 *
 * RGB24 and RGB32 give UInt8, Gradient16 gives SInt16 and Gradient32 SInt32; a channel that they do not have
 * gives the void image. SInt8, UInt8, UInt16, SInt16, UInt32, SInt32, Float32 and Float64 give their own
 * type. All other images, those that are not valid among them, give the void image. Nothing fails.
 *
 * Images with a free number of channels are taken pixel by pixel, row by row, if they have 1, 3 or 4
 * channels, among them the wanted one, of UInt8, UInt16, SInt16, SInt32 or Float32. Otherwise the memory from
 * the first pixel on is taken as a sequence of channels without gaps between the rows: what lies between the
 * rows of a view counts too, and a channel beyond the last one is that of a later pixel. Beyond the end of
 * the memory there are zeros.
 */
class TARNIMG_EXPORT cExtractChannelFunctor : public cImgFunctor {
public:
    cImg operator()(const cImg& i_image) const;
    void refreshParams(cObj* i_params) override;

    unsigned getChannelID() const { return m_channelID; }
    void setChannelID(unsigned i_channelID) { m_channelID = i_channelID; }

private:
    unsigned int m_channelID = 0;
};
