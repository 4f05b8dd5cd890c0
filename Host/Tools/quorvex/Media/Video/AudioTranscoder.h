#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/rational.h>
}

struct AVAudioFifo;
struct AVCodecContext;
struct AVCodecParameters;
struct AVFrame;
struct AVPacket;
struct SwrContext;

namespace Halvane::Quorvex::Tools {

// Audio that an output container cannot hold as it is, re-encoded to a
// codec it can (its usual one), as ffmpeg does: decoded, converted to a
// sample format, rate and channel layout the encoder takes, cut into the
// encoder's frame size, and encoded with its timestamps counted in samples
// from the first one's.
class AudioTranscoder {
public:
    // Where encoded packets go, with their timestamps in timeBase().
    using PacketOutput = std::function<void(AVPacket& packet)>;

    // Throws ToolError (runtime) naming `target` when the audio cannot be
    // decoded or encoded.
    AudioTranscoder(const AVCodecParameters& input, AVRational inputTimeBase, AVCodecID codec,
                    bool globalHeader, const std::string& target);
    ~AudioTranscoder();

    AudioTranscoder(const AudioTranscoder&) = delete;
    AudioTranscoder& operator=(const AudioTranscoder&) = delete;

    // The encoder's description, for the output stream before its header.
    void describe(AVCodecParameters& output) const;
    AVRational timeBase() const;
    const char* codecName() const;

    // Takes one packet of the input stream.
    void send(const AVPacket& packet, const PacketOutput& output);
    // Encodes what is left.
    void finish(const PacketOutput& output);

private:
    void release();
    void decodeAll(const PacketOutput& output);
    // Converts a decoded frame (none: the converter's remainder) into the FIFO.
    void convert(const AVFrame* frame);
    // Encodes whole frames from the FIFO (at the end, the rest too).
    void encodeQueued(bool atEnd, const PacketOutput& output);
    void encode(AVFrame* frame, const PacketOutput& output);
    [[noreturn]] void fail(const std::string& what, int error) const;

    std::string mTarget;
    AVRational mInputTimeBase{1, 1};
    AVCodecContext* mDecoder = nullptr;
    AVCodecContext* mEncoder = nullptr;
    SwrContext* mConverter = nullptr;
    AVAudioFifo* mQueue = nullptr;
    AVFrame* mDecoded = nullptr;
    AVFrame* mChunk = nullptr;
    AVPacket* mPacket = nullptr;
    std::optional<std::int64_t> mNextSample;  // in the encoder's time base
};

}  // namespace Halvane::Quorvex::Tools
