#pragma once

#include <memory>

struct AVPacket;

namespace Halvane::Quorvex::Tools {

// A compressed packet of an input stream that the effect does not touch
// (audio, subtitles), on its way from the reader to the writer unchanged.
class PassThroughPacket {
public:
    // Takes ownership of `packet`.
    explicit PassThroughPacket(AVPacket* packet);

    AVPacket* get() const { return mPacket.get(); }
    int streamIndex() const;

private:
    struct Release {
        void operator()(AVPacket* packet) const;
    };
    std::unique_ptr<AVPacket, Release> mPacket;
};

}  // namespace Halvane::Quorvex::Tools
