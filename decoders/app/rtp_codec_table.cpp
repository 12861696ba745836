#include "decoders/app/rtp_codec_table.h"

namespace qxview {
namespace {

constexpr uint8_t kNo = kNoStaticType;
constexpr MediaKind kNone = MediaKind::kNone, kAudio = MediaKind::kAudio, kVideo = MediaKind::kVideo,
                    kBoth = MediaKind::kAudioVideo, kData = MediaKind::kData, kImage = MediaKind::kStillImage;

// The numbers are the rows' places. G.722 has the bandwidth in place of the clock rate, and some of the negotiated
// rows the bit rate: these are the figures that users of the summaries know. Rows of a codec whose encoding name
// stands with its static type have none, so that a negotiated name gives the static row.
constexpr RtpCodec kCodecs[] = {
    {0, kAudio, 8000, "PCMU(G.711)", "PCMU"},
    {1, kAudio, 8000, "1016", nullptr},
    {2, kAudio, 8000, "G.721", "G721"},
    {3, kAudio, 8000, "GSM", "GSM"},
    {4, kAudio, 8000, "G.723", "G723"},
    {5, kAudio, 8000, "DVI4 8K", "DVI4"},
    {6, kAudio, 16000, "DVI4 16K", "DVI4"},
    {7, kAudio, 8000, "LPC", "LPC"},
    {8, kAudio, 8000, "PCMA(G.711)", "PCMA"},
    {9, kAudio, 7000, "G.722 64K", "G722"},
    {10, kAudio, 44100, "16 Bit Linear (2 Channel)", "L16"},
    {11, kAudio, 44100, "16 Bit Linear (1 Channel)", "L16"},
    {12, kAudio, 8000, "QCELP", "QCELP"},
    {13, kAudio, 8000, "Comfort Noise", "CN"},
    {14, kAudio, 90000, "MPA", "MPA"},
    {15, kAudio, 8000, "G.728 8K", "G728"},
    {16, kAudio, 11025, "DVI4 11K", "DVI"},
    {17, kAudio, 22050, "DVI4 22K", "DVI"},
    {18, kAudio, 8000, "G.729 8K", "G729"},
    {25, kVideo, 90000, "CelB", "CelB"},
    {26, kVideo, 90000, "JPEG", "JPEG"},
    {28, kVideo, 90000, "nv", "nv"},
    {31, kVideo, 90000, "H.261 90K", "H261"},
    {32, kVideo, 90000, "MPV", "MPV"},
    {33, kBoth, 90000, "MP2T", "MP2T"},
    {34, kVideo, 90000, "H.263 90K", "H263"},
    {kNo, kNone, 0, "Dynamic", nullptr},
    {kNo, kAudio, 8000, "G.711 (a-Law) 64K", nullptr},
    {kNo, kAudio, 8000, "G.711 (a-Law) 56K", nullptr},
    {kNo, kAudio, 8000, "G.711 (u-Law) 64K", nullptr},
    {kNo, kAudio, 8000, "G.711 (u-Law) 56K", nullptr},
    {kNo, kAudio, 7000, "G.722 56K", nullptr},
    {kNo, kAudio, 7000, "G.722 48K", nullptr},
    {kNo, kAudio, 16000, "G.722-1", "G7221"},
    {kNo, kAudio, 16000, "G.722-2", "AMR-WB"},
    {kNo, kAudio, 64000, "G.723-1", nullptr},
    {kNo, kAudio, 64000, "G.723-1 Annex C", nullptr},
    {kNo, kAudio, 8000, "G.726 16K", "G726-16"},
    {kNo, kAudio, 8000, "G.726 24K", "G726-24"},
    {kNo, kAudio, 8000, "G.726 32K", "G726-32"},
    {kNo, kAudio, 8000, "G.726 40K", "G726-40"},
    {kNo, kAudio, 8000, "G.728", nullptr},
    {kNo, kAudio, 8000, "G.729", nullptr},
    {kNo, kAudio, 8000, "G.729 Annex A", nullptr},
    {kNo, kAudio, 8000, "G.729 Annex B", nullptr},
    {kNo, kAudio, 8000, "G.729 Annex A & B", nullptr},
    {kNo, kAudio, 8000, "G.729 Extensions", "G729E"},
    {kNo, kAudio, 90000, "IS11172", nullptr},
    {kNo, kAudio, 90000, "IS13818", nullptr},
    {kNo, kAudio, 8000, "GSM Full Rate", nullptr},
    {kNo, kAudio, 5600, "GSM Half Rate", "GSM-HR-08"},
    {kNo, kAudio, 12200, "GSM Enhanced Full Rate", "GSM-EFR"},
    {kNo, kAudio, 8000, "BroadVoice Narrowband 16K", "BV16"},
    {kNo, kAudio, 16000, "BroadVoice Wideband 16K", "BV32"},
    {kNo, kAudio, 8000, "VBD", nullptr},
    {kNo, kAudio, 8000, "Internet Low Bit Rate Codec", "iLBC"},
    {kNo, kAudio, 8000, "Speex", "x-speex"},
    {kNo, kAudio, 8000, "IMA ADPCM", nullptr},
    {kNo, kAudio, 8000, "LPC10", nullptr},
    {kNo, kAudio, 8000, "Telephony Event", "telephone-event"},
    {kNo, kAudio, 8000, "Audio Tone", "tone"},
    {kNo, kAudio, 8000, "G.711 (A-law) with PLP", nullptr},
    {kNo, kAudio, 8000, "G.711 (U-law) with PLP", nullptr},
    {kNo, kAudio, 8000, "8 Bit Linear", "L8"},
    {kNo, kVideo, 90000, "H.261", nullptr},
    {kNo, kVideo, 90000, "H.262", nullptr},
    {kNo, kVideo, 90000, "H.263", nullptr},
    {kNo, kVideo, 90000, "H.263-1998", "H263-1998"},
    {kNo, kVideo, 90000, "H.263-2000", "H263-2000"},
    {kNo, kVideo, 90000, "H.264", "H264"},
    {kNo, kVideo, 90000, "IS11172", nullptr},
    {kNo, kImage, 0, "JPEG", nullptr},
    {kNo, kImage, 0, "PNG", nullptr},
    {kNo, kData, 0, "T120", nullptr},
    {kNo, kData, 0, "DSM-CC", nullptr},
    {kNo, kData, 0, "User Data", nullptr},
    {kNo, kData, 0, "T.84", nullptr},
    {kNo, kData, 0, "T.434", nullptr},
    {kNo, kData, 0, "H.224", "H224"},
    {kNo, kData, 0, "NLPID", nullptr},
    {kNo, kData, 0, "DSVD Control", nullptr},
    {kNo, kData, 0, "H.222 Data Partitioning", nullptr},
    {kNo, kData, 0, "T.30 Fax", nullptr},
    {kNo, kData, 0, "T.140", "t140"},
    {kNo, kData, 0, "T.38 Fax", "t38"},
    {kNo, kAudio, 16000, "MS RTAudio 16K", "x-msrta"},
    {kNo, kAudio, 8000, "MS RTAudio 8K", "x-msrta"},
};
static_assert(sizeof kCodecs == sizeof kCodecs[0] * kRtpCodecs);
static_assert(kCodecs[kDynamicCodec].payloadType == kNo && kCodecs[kDynamicCodec - 1].payloadType != kNo);

constexpr char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool EqualNames(const char* a, const char* b) {
  while (*a && LowerCase(*a) == LowerCase(*b)) ++a, ++b;
  return *a == *b;
}

}  // namespace

const RtpCodec& RtpCodecAt(int32_t number) { return kCodecs[number]; }

const RtpCodec* FindRtpCodec(int32_t payloadType) {
  if (payloadType < 0 || payloadType > 127) return nullptr;
  if (payloadType >= 96) return &kCodecs[kDynamicCodec];
  for (const RtpCodec& codec : kCodecs) {
    if (codec.payloadType == payloadType) return &codec;
  }
  return nullptr;
}

const RtpCodec* FindRtpEncoding(const char* encodingName, uint32_t clockRate) {
  const RtpCodec* first = nullptr;
  for (const RtpCodec& codec : kCodecs) {
    if (!encodingName || !codec.encodingName || !EqualNames(codec.encodingName, encodingName)) continue;
    if (codec.clockRate == clockRate) return &codec;
    if (!first) first = &codec;
  }
  return first;
}

}  // namespace qxview
