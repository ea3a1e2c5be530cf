// What the tool parses: multipart bodies, parts, picture files, addresses, options of overlays, and the frames of a stream. Where
// the bytes are cut into chunks must not matter.
#include "apps/velarto/overlays.h"
#include "apps/velarto/picture_file.h"
#include "apps/velarto/sources/multipart.h"
#include "apps/velarto/sources/part_frame.h"
#include "apps/velarto/sources/source.h"
#include "apps/velarto/sources/url.h"
#include "decode/framing.h"
#include "fuzz/run.h"

namespace {

/** True for bytes that announce a legal picture so large that reading it takes seconds. */
bool Jpeg_Too_Large(const Bytes& bytes) {
  for (size_t i = 0; i + 9 < bytes.size(); ++i) {
    if (bytes[i] != 0xFF || bytes[i + 1] < 0xC0 || bytes[i + 1] > 0xCF) continue;
    if ((bytes[i + 5] << 8 | bytes[i + 6]) * int64_t{bytes[i + 7] << 8 | bytes[i + 8]} > 1'000'000) return true;
  }
  return false;
}

/** The bodies of the parts and their lengths, read in chunks. */
Bytes Parts(Input input, size_t chunk, const std::string& boundary) {
  Multipart multipart;
  multipart.boundary = boundary;
  Bytes all;
  while (input.left) {
    Multipart_Add(&multipart, input.Some(chunk));
    for (std::span<const uint8_t> body; Multipart_Next(&multipart, &body);) {
      all.insert(all.end(), body.begin(), body.end());
      all.push_back((uint8_t)body.size());
    }
  }
  return all;
}

/** Offset, form, size, quality and length of each frame, read in chunks. */
std::vector<int64_t> Frames(Input input, size_t chunk) {
  FrameWalk walk;
  std::vector<int64_t> all;
  for (bool ended = false; !ended;) {
    ended = input.left == 0;
    ended ? Walk_End(&walk) : Walk_Add(&walk, input.Some(chunk));
    for (WalkedFrame frame; Walk_Next(&walk, &frame);) {
      REQUIRE(frame.number == (int64_t)all.size() / 6);
      all.insert(all.end(),
                 {frame.offset, (int64_t)frame.form, frame.width, frame.height, frame.quality, (int64_t)frame.bytes.size()});
    }
  }
  all.push_back(Walk_Skipped(walk));
  return all;
}

void Read_Picture(const Bytes& bytes) {
  Picture picture;
  std::string error;
  if (Jpeg_Too_Large(bytes)) return;
  const bool read = Picture_Parse(bytes, &picture, &error);
  REQUIRE(read == error.empty());
  if (read) REQUIRE(picture.pixels.size() == (size_t)picture.width * (size_t)picture.height * 3);
}

void Read_Part(uint32_t mask, const Bytes& bytes) {
  const Run run(mask);
  PartConverter converter;
  Bytes stream;
  if (Jpeg_Too_Large(bytes) || !Part_To_Frame(&converter, bytes, &stream)) return;
  // A search needs this many bytes, more than the shortest frames have.
  stream.resize(stream.size() + LeastSearchBytes);
  FrameWalk walk;
  WalkedFrame frame;
  Walk_Add(&walk, stream);
  Walk_End(&walk);
  REQUIRE(Walk_Next(&walk, &frame) && Frame_Decodable(frame));
}

void Read_Address(const std::string& name) {
  const std::string title = Source_Title(name);
  REQUIRE(title.size() <= name.size() || name == "-");
  const size_t host = title.find("://");
  if (host != std::string::npos) {
    // A title shows neither user nor password.
    REQUIRE(title.substr(host + 3, title.find_first_of("/?#", host + 3) - host - 3).find('@') == std::string::npos);
  }
  std::string boundary;
  Multipart_Type(name, &boundary);
  REQUIRE(boundary.size() <= name.size() && Url_Is_Http(name) <= (name.size() >= 7) && Source_Live(name) <= !name.empty());
}

/** Parses words of a command line. Without slashes they can name files of the working folder only, where there are none. */
void Read_Options(const std::string& line) {
  CLI::App app;
  OverlayOptions options;
  Add_Overlay_Options(&app, &options);
  std::vector<std::string> words;
  for (size_t at = 0, end = 0; end != line.size(); at = end + 1) {
    end = std::min(line.find('\n', at), line.size());
    words.insert(words.begin(), line.substr(at, end - at));
  }
  try {
    app.parse(words);
  } catch (const CLI::ParseError& error) {
    return REQUIRE(error.get_exit_code() != 0 || line.find("-h") != std::string::npos);
  }
  Overlays overlays;
  std::string wrong;
  REQUIRE(Overlays_Read(options, &overlays, &wrong) == wrong.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input = {data, size};
  const uint32_t mask = Draw_Level(&input);
  const uint8_t what = input.Byte();
  const size_t chunk = input.Byte() + 1;
  const std::string boundary = what & 8 ? "cut" : "";
  switch (what % 6) {
    case 0:
      REQUIRE(Parts(input, chunk, boundary) == Parts(input, size, boundary));
      break;
    case 1:
      REQUIRE(Frames(input, chunk) == Frames(input, size));
      break;
    case 2:
      Read_Picture(input.Some(size));
      break;
    case 3:
      Read_Part(mask, input.Some(size));
      break;
    case 4:
      Read_Address({reinterpret_cast<const char*>(input.data), input.left});
      break;
    default: {
      std::string line(reinterpret_cast<const char*>(input.data), input.left);
      std::erase(line, '/');
      Read_Options(line);
    }
  }
  return 0;
}
