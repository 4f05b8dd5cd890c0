#include "Media/Frames/PassThroughPacket.h"

extern "C" {
#include <libavcodec/packet.h>
}

namespace Halvane::Quorvex::Tools {

PassThroughPacket::PassThroughPacket(AVPacket* packet) : mPacket(packet)
{
}

int PassThroughPacket::streamIndex() const
{
    return mPacket->stream_index;
}

void PassThroughPacket::Release::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}

}  // namespace Halvane::Quorvex::Tools
