// Every case of some kinds: each quality, each split of a stream, each wrong byte of a frame.
#include "support/levels.h"
#include "support/streams.h"
#include "support/window.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/** A picture of noise in few bytes. */
Bytes Encoded(JdecDecoder* encoder, int32_t quality, int32_t withMarkers) {
  Bytes pixels = Noise{7}.Some((size_t)encoder->width * (size_t)encoder->height * 3);
  for (size_t i = 3; i < pixels.size(); ++i) pixels[i] = (uint8_t)((pixels[i - 3] + pixels[i]) / 2);
  return Compressed(encoder, quality, pixels, withMarkers);
}

TestFrame Small_Frame(int32_t width, int32_t height, int32_t quality) {
  const DecoderPtr encoder = Headless_Decoder(width, height);
  const Bytes compact = Encoded(encoder.get(), quality, 0);
  return {width, height, compact[8], Encoded(encoder.get(), quality, 1), compact, Prefixed_Frame(compact)};
}

/** Feeds bytes to one of the paths, which takes all frames that they complete. Gives the result of the last call. */
int32_t Feed(JdecDecoder* decoder, const Bytes& bytes, bool polling) {
  static Bytes taken((size_t)FrameStoreSize);
  if (!polling) return Push(decoder, bytes);
  Store(decoder, bytes);
  for (;;) {
    const int32_t result = JDEC_Check_Decode_Frame(decoder, 1, taken.data(), FrameStoreSize, nullptr, 0, 1, nullptr);
    if (result != 1) return result;
  }
}

using Exhaustive = LibraryTest;

TEST_F(Exhaustive, QualitiesThatFramesAndTheEncoderCarry) {
  TestFrame frame = Small_Frame(16, 16, 60);
  std::vector<Bytes> pictures(256), encoded(101);  // By the plain kernels.
  for (const auto& [level, mask] : Test_Levels()) {
    kernels = Kernels_Select(mask);
    const DecoderPtr decoder = Headless_Decoder(16, 16);
    const auto keep_or_compare = [](Bytes* plain, const Bytes& bytes) {
      return (plain->empty() ? *plain = bytes : *plain) == bytes;
    };
    for (int32_t value = 0; value < 65536; ++value) {  // The upper byte is not read.
      frame.compact[8] = (uint8_t)value;
      frame.compact[9] = (uint8_t)(value >> 8);
      Push(decoder.get(), frame.compact);
      ASSERT_EQ(JDEC_Get_Quality(decoder.get()), value % 256);
      ASSERT_TRUE(keep_or_compare(&pictures[(size_t)value % 256], Current_Picture(decoder.get()))) << level << " " << value;
    }
    for (int32_t first = 0; first < 256; ++first) {  // Of the luma quantisers, 16 at quality 50.
      const double percent = std::floor(first * 100 / 16.0);
      const double quality = std::floor(percent > 100 ? 5000 / percent : 100 - percent / 2);
      frame.jfif[25] = (uint8_t)first;
      Push(decoder.get(), frame.jfif);
      ASSERT_EQ(JDEC_Get_Quality(decoder.get()), quality) << first;
      ASSERT_TRUE(Current_Picture(decoder.get()) == pictures[(size_t)quality]) << level << " " << first;
    }
    for (int32_t quality = 0; quality <= 100; ++quality) {
      const Bytes bytes = Encoded(decoder.get(), quality, quality % 2);
      ASSERT_EQ(JDEC_Get_Quality(decoder.get()), quality * 80 / 100 + 10);
      ASSERT_TRUE(keep_or_compare(&encoded[(size_t)quality], bytes)) << level << " " << quality;
    }
  }
}

/** What a stream leads to: the picture, quality and hidden text of each frame shown; results; bits counted. */
struct StreamResult {
  std::vector<Bytes> frames;
  std::vector<int32_t> results;
  double bits;
  bool operator==(const StreamResult&) const = default;
};

StreamResult See(JdecDecoder* decoder, const Bytes& stream, int32_t cut, bool polling) {
  StreamResult seen = {{}, {}, 0};
  using User = const std::pair<JdecDecoder*, StreamResult*>;
  const User user(decoder, &seen);
  const auto keep = [](HWND, uintptr_t value) {
    const auto& [shown, to] = *reinterpret_cast<User*>(value);
    Bytes text(1024);
    text.resize((size_t)JDEC_read_watermark_string(nullptr, text.data(), 1024));
    to->frames.push_back(Joined({Current_Picture(shown), {(uint8_t)JDEC_Get_Quality(shown)}, text}));
  };
  JDEC_Flush(decoder);
  decoder->statsBits[0] = decoder->statsBits[1] = 0;
  JDEC_register_draw_callback(decoder, keep, reinterpret_cast<uintptr_t>(&user));
  for (const Bytes& chunk : {Bytes(stream.begin(), stream.begin() + cut), Bytes(stream.begin() + cut, stream.end())})
    seen.results.push_back(Feed(decoder, chunk, polling));
  JDEC_register_draw_callback(decoder, nullptr, 0);
  seen.bits = decoder->statsBits[0] + decoder->statsBits[1];
  return seen;
}

/** The polling path misses no frame. The pushing path misses a JFIF frame if a chunk ends with 26 to 624 bytes of it: it doesn't
 *  wait for the whole header. With fewer bytes it doesn't search yet. */
TEST_F(Exhaustive, SplitsOfThreeFramesIntoTwoChunks) {
  const TestWindow window(32, 64, 40);
  const TestFrame frames[] = {Small_Frame(16, 16, 20), Small_Frame(16, 16, 10), Small_Frame(32, 16, 0)};
  for (size_t first = 0; first < 3; ++first) {
    std::vector<Bytes> parts;
    for (size_t i = 0; i < 3; ++i) parts.push_back(frames[i].In_Form((first + i) % 3));
    const Bytes stream = Joined(parts);
    const auto length = (int32_t)stream.size();
    for (const bool polling : {false, true}) {
      const DecoderPtr decoder = Shown_Decoder(window.handle, 16, 16);
      const StreamResult whole = See(decoder.get(), stream, length, polling);
      ASSERT_EQ(whole.frames.size(), 3u);
      ASSERT_EQ(whole.bits, polling ? 0 : 8 * length);
      int32_t start = 0;  // Of the frame that is cut.
      size_t which = 0;
      for (int32_t cut = 1; cut < length; ++cut) {
        if (cut - start == (int32_t)parts[which].size()) start += (int32_t)parts[which++].size();
        const int32_t held = cut - start;
        const bool jfif = (first + which) % 3 == Jfif, lost = !polling && jfif && held >= 26 && held <= 624;
        StreamResult expected = whole;
        if (lost) expected.frames.erase(expected.frames.begin() + (ptrdiff_t)which);
        const int32_t wanted = held < 26 || lost ? cut : jfif ? held + 1 : (int32_t)parts[which].size();
        expected.results = polling ? std::vector{held < 26 ? 3 : 2, 3}
                                   : std::vector{which == 0 ? -1 : wanted, lost && which == 2 ? -1 : length - cut};
        ASSERT_TRUE(See(decoder.get(), stream, cut, polling) == expected)
            << "polling " << polling << ", first form " << first << ", cut at " << cut;
      }
    }
  }
}

/** Offset at which the search continues in a stream whose first frame has a wrong byte: after the length that its header
 *  announces, or after the first end marker of a JFIF frame. A frame without its start markers is not found: its own end. */
size_t Announced_End(size_t form, const Bytes& intact, const Bytes& stream) {
  const auto marked = [&](std::initializer_list<size_t> places) {
    return std::all_of(places.begin(), places.end(), [&](size_t i) { return stream[i] == intact[i]; });
  };
  if (form == Jfif) {
    if (!marked({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 20, 21, 158, 159})) return intact.size();
    const uint8_t mark[] = {0xFF, 0xD9};
    return (size_t)(std::search(stream.begin(), stream.end(), mark, mark + 2) - stream.begin()) + 2;
  }
  const size_t header = form == Prefixed ? 14 : 0, most = (size_t)FrameStoreSize;
  if (!marked({header, header + 1, header + 10, header + 11})) return intact.size();
  size_t end = header + 12 + stream[header + 2] + 256u * stream[header + 3];
  if (form == Prefixed && marked({0, 2, 4, 6, 12})) end += size_t{65536} * stream[3] + size_t{16777216} * stream[1];
  return end > most ? intact.size() : end;
}

/** The values tried at an offset: all of them; but in the tables of a JFIF header, which are only searched for markers, those of
 *  markers, and in the upper byte of a width or height a few, because large pictures take long. */
Bytes Wrong_Values(size_t form, size_t place) {
  const size_t header = form == Prefixed ? 14 : 0;
  if (form == Jfif ? place == 163 || place == 165 : place == header + 5 || place == header + 7) return {1, 3, 0x80, 0xFF};
  if (form == Jfif && ((place > 26 && place < 158) || (place > 176 && place < 609)))
    return {0, 0xC0, 0xD8, 0xD9, 0xDA, 0xDB, 0xFF};
  Bytes all(256);
  std::iota(all.begin(), all.end(), 0);
  return all;
}

/** After a damaged frame, the first good frame that begins at its announced end or later is decoded. What the damaged one decodes
 *  to doesn't depend on the kernel level. */
TEST_F(Exhaustive, WrongBytesInAFrameOfEachForm) {
  const TestFrame frame = Small_Frame(16, 16, 20), next = Small_Frame(16, 16, 5);
  const Bytes &good = next.compact, goodPicture = Picture_Of(next);
  std::vector<std::pair<Kernels, DecoderPtr>> levels;
  for (const auto& level : Test_Levels()) levels.emplace_back(Kernels_Select(level.mask), Headless_Decoder(16, 16));
  const auto try_out = [&](const Bytes& bad, size_t end, bool polling) {
    const size_t swallowed = end <= bad.size() ? 0 : (end - bad.size() + good.size() - 1) / good.size();
    const Bytes swallowedFrames = Joined(std::vector<Bytes>(swallowed, good));
    std::vector<Bytes> pictures;
    for (const auto& [level, decoder] : levels) {
      kernels = level;
      Feed(decoder.get(), bad, polling);
      pictures.push_back(Current_Picture(decoder.get()));
      if (swallowed > 0) Feed(decoder.get(), swallowedFrames, polling);
      Feed(decoder.get(), good, polling);
      if (pictures.back() != pictures.front() || Current_Picture(decoder.get()) != goodPicture) return false;
    }
    return true;
  };
  for (const size_t form : {Jfif, Compact, Prefixed}) {
    const Bytes& intact = frame.In_Form(form);
    for (size_t place = 0; place < intact.size(); ++place) {
      for (const uint8_t value : Wrong_Values(form, place)) {
        Bytes bad = intact;
        bad[place] = value;
        const size_t end = Announced_End(form, intact, Joined({bad, good}));
        ASSERT_TRUE(try_out(bad, end, false) && try_out(bad, end, true)) << form << ", byte " << place << " is " << (int)value;
      }
    }
  }
}

}  // namespace
