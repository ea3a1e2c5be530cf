#include "apps/tool.h"
#include "apps/velarto/frame_maker.h"
#include "apps/velarto/picture_file.h"
#include "support/djpeg.h"

namespace {

std::string Text_Of(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
std::string Little(int64_t value, int count) {
  std::string text;
  for (; count > 0; --count, value >>= 8) text += (char)value;
  return text;
}

/** A BMP file with those bytes between its header and its pixels. */
std::string Bmp(int64_t width, int64_t height, int bits, const std::string& between, const std::string& pixels, int kind = 0) {
  return "BM" + Little(0, 8) + Little(54 + (int64_t)between.size(), 4) + Little(40, 4) + Little(width, 4) + Little(height, 4) +
         Little(1, 2) + Little(bits, 2) + Little(kind, 4) + Little(0, 20) + between + pixels;
}
std::string Ppm(int32_t width, int32_t height, const std::string& pixels) {
  return "P6\n# a comment\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n" + pixels;
}
std::string Noise_Ppm(int32_t width, int32_t height) { return Ppm(width, height, Text_Of(Noise{1}.Some(3u * width * height))); }

struct MakeTest : ToolTest {
  Bytes Held(const std::string& name) const { return Read_File((folder / name).string()); }
  void Expect_Made(const std::string& arguments) const { EXPECT_EQ(Run("make " + arguments).code, 0) << arguments; }
  const std::string scenePath = Data_Path("scene-q75.jpg");  // 320x240.
};

TEST_F(MakeTest, EachFormDecodesToItsPicture) {
  // Moved, so that its blocks are not those of its first compression.
  constexpr size_t moved = 3 * (320 * 6 + 4);
  const std::string scene = Text_Of(Picture_Of(Load_Frame("scene-q75.jpg", 75))).substr(54);
  Write("scene.bmp", Bmp(320, 240, 24, "", scene.substr(moved) + scene.substr(0, moved)));
  const struct {
    int quality, frameQuality;
    double least;
  } cases[] = {{0, 10, 22}, {25, 30, 25}, {50, 50, 27}, {75, 70, 29}, {100, 90, 32}};
  for (const auto& [quality, frameQuality, least] : cases) {
    for (const std::string form : {"compact", "prefixed", "jfif"}) {
      const std::string number = std::to_string(form == "jfif" ? Quality_Readable(quality) * 80 / 100 + 10 : frameQuality);
      Expect_Made("scene.bmp -o s.vlr --repeat 2 --form " + form + " --quality " + std::to_string(quality));
      const std::string json = Run("info --json s.vlr").out;
      Expect_In(json, "\"form\":\"" + form + "\",");
      Expect_In(json, "\"frame\":1,");
      Expect_In(json,
                "\"width\":320,\"height\":240,\"quality\":" + number + "}\n{\"type\":\"summary\",\"frames\":2,\"skipped\":0,");
      for (const std::string kind : {"JPG", "bmp"}) EXPECT_EQ(Run("export s.vlr -o %d." + kind).code, 0);
      EXPECT_TRUE(form != "jfif" || Joined({Held("0.JPG"), Held("1.JPG")}) == Held("s.vlr"));
      const Bytes source = Held("scene.bmp"), theirs = Decoded_By_Djpeg((folder / "0.JPG").string());
      ASSERT_EQ(theirs.size(), source.size()) << "djpeg reports an error";
      const auto psnr = Psnr(theirs, source), own = Psnr(Held("1.bmp"), source);
      EXPECT_GT(*std::ranges::min_element(psnr), least) << form << quality;
      for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(psnr[i], own[i], 0.5) << form << quality;
      std::printf("quality %3d %-8s: PSNR %.1f %.1f %.1f dB\n", quality, form.c_str(), psnr[0], psnr[1], psnr[2]);
    }
  }
}

TEST_F(MakeTest, AllKindsOfFilesGiveTheSamePicture) {
  for (const std::string kind : {"24.bmp' -bmp '", "p6.ppm' -ppm '", "p5.pgm' -grayscale -pnm '"})
    ASSERT_EQ(std::system(("djpeg -outfile '" + folder.string() + "/" + kind + scenePath + "'").c_str()), 0);
  const std::string bmp = Text_Of(Held("24.bmp")), grey = Text_Of(Held("p5.pgm")).substr(15);
  std::string wide, topDown, greyDown, palette;
  for (size_t i = 54; i < bmp.size(); i += 3) wide += bmp.substr(i, 3) + '\xA5';
  for (size_t y = 240; y-- > 0;) topDown += bmp.substr(54 + y * 960, 960), greyDown += grey.substr(y * 320, 320);
  for (int i = 0; i < 256; ++i) palette += std::string(3, (char)i) + '\0';
  Write("32.bmp", Bmp(320, 240, 32, "", wide));
  Write("masks.bmp", Bmp(320, 240, 32, Little(0xFF0000, 4) + Little(0xFF00, 4) + Little(0xFF, 4), wide, 3));
  Write("down.bmp", Bmp(320, -240, 24, "", topDown));
  Write("8.bmp", Bmp(320, 240, 8, palette, greyDown));
  Expect_Made(scenePath + " -o colour.vlr");
  Expect_Made("p5.pgm -o grey.vlr");
  for (const std::string name : {"24.bmp", "p6.ppm", "32.bmp", "masks.bmp", "down.bmp", "8.bmp"}) {
    Expect_Made("- -o - <" + name);
    EXPECT_EQ(Held("out"), Held(name == "8.bmp" ? "grey.vlr" : "colour.vlr")) << name;
  }
}

TEST_F(MakeTest, SizesThatAreNoMultipleOf16) {
  // Padded rows of 3 * 37 + 1 bytes; after it a picture of another size.
  Write("odd.bmp", Bmp(37, 50, 24, "", std::string(size_t{112} * 50, '\x80')));
  Write("small.ppm", Noise_Ppm(16, 16));
  for (const std::string form : {"compact", "prefixed", "jfif"}) {
    const bool cut = form == "jfif";
    Expect_Made("odd.bmp small.ppm -o odd.vlr --form " + form);
    for (const std::string size : {cut ? "32x48" : "37x50", "16x16"}) Expect_In(Run("info odd.vlr").out, size);
    EXPECT_EQ(Run("export odd.vlr -o %d --format jpg").code, 0);
    const Bytes odd = Decoded_By_Djpeg((folder / "0").string()), small = Decoded_By_Djpeg((folder / "1").string());
    EXPECT_EQ(odd.size(), cut ? 54u + 96 * 48 : 54u + 112 * 50);
    EXPECT_EQ(small.size(), 54u + 768);
    EXPECT_NEAR(odd.at(54 + 3 * (cut ? 96 : 112)), 128, 3) << "left, third row from the bottom";
  }
  // The picture of a damaged frame is written as a valid file.
  Bytes jfif = Read_File(scenePath);
  std::fill(jfif.begin() + 5000, jfif.begin() + 5100, (uint8_t)0x55);
  jfif.erase(jfif.begin() + 9000, jfif.end() - 2);
  Write("damaged", Text_Of(jfif));
  for (const std::string kind : {"jpg", "bmp"}) EXPECT_EQ(Run("export damaged -o d%d." + kind).code, 0);
  const Bytes written = Decoded_By_Djpeg((folder / "d0.jpg").string());
  ASSERT_EQ(written.size(), 54u + 320 * 240 * 3);
  for (const double psnr : Psnr(written, Held("d0.bmp"))) EXPECT_GT(psnr, 25);
}

TEST_F(MakeTest, TextsAreReadBackExactly) {
  std::string longest;
  for (int i = 0; i < 1024; ++i) longest += (char)(255 - i);
  const Picture flat = {320, 240, Bytes(230400, 90)}, noisy = {320, 240, Noise{7}.Some(230400)},
                large = {1024, 528, Noise{9}.Some(size_t{1024} * 528 * 3)};
  for (const Picture* picture : {&flat, &noisy, &large}) {
    const DecoderPtr maker = Headless_Decoder(picture->width, picture->height), reader = Headless_Decoder(16, 16);
    const std::string room = longest.substr(0, picture == &large ? 1024 : 149);
    for (const std::string& text : {std::string("a"), std::string("\0\xFF$\xDB", 4), room, room.substr(1), room + "!"}) {
      const FrameStyle style = {FrameForm::Prefixed, picture == &large ? 20 : 100, text};
      Bytes frame, read(1024);
      std::string error;
      ASSERT_EQ(Frame_Make(maker.get(), *picture, style, &frame, &error), text.size() <= room.size()) << error;
      if (text.size() > room.size()) continue;
      Push(reader.get(), frame);
      read.resize((size_t)JDEC_read_watermark_string(nullptr, read.data(), 1024));
      EXPECT_EQ(Text_Of(read), text);
    }
  }
  // A frame with a text, one that can't be decoded, and one without text.
  Write("flat.ppm", Ppm(64, 48, std::string(9216, 'g')));
  for (const std::string more : {"with --text '4 \"\xC3\xA9'", "without"}) Expect_Made("flat.ppm -o " + more);
  Write("all", Text_Of(Joined({Held("with"), {0xFF, 0xD8, 0, 0, 0, 0, 1, 0, 50, 0, 0xFF, 0xD9}, Held("without")})));
  const std::string lines = Run("info --text all").out, json = Run("info --text --json all").out;
  Expect_In(lines, "64x48  quality 70  text \"4 \\x22\\xc3\\xa9\"\n");
  EXPECT_EQ(lines.find("text"), lines.rfind("text"));
  Expect_In(json, ",\"text\":\"4 \\u0022\\u00c3\\u00a9\"}\n");
  Expect_In(json, "\"width\":0,\"height\":1,\"quality\":50,\"text\":\"\"}\n");
  Expect_In(json, "\"quality\":70,\"text\":\"\"}\n");
}

TEST_F(MakeTest, WhatIsNoPictureIsRefused) {
  const auto complaint = [](const std::string& bytes) {
    Picture picture;
    std::string error;
    const bool read = Picture_Parse(Bytes(bytes.begin(), bytes.end()), &picture, &error);
    EXPECT_EQ(read, error.empty());
    return error;
  };
  const std::string jpeg = Text_Of(Read_File(scenePath)), ppm = Noise_Ppm(17, 16),
                    bmp = Bmp(17, 16, 24, "", std::string(832, 'x')),
                    grey = Bmp(16, 16, 8, std::string(1024, 0), std::string(256, 'x'));
  for (const std::string& good : {jpeg, ppm, bmp, grey}) {
    EXPECT_EQ(complaint(good), "");
    for (size_t i = 0; i < good.size() - 3; i += i < 700 ? 1 : 997) EXPECT_NE(complaint(good.substr(0, i)), "") << i;
    EXPECT_NE(complaint(good.substr(0, good.size() - 3)), "");
  }
  const int64_t most = INT32_MAX,
                sizes[][2] = {{most, most}, {16, INT32_MIN}, {-16, 16}, {0, 16}, {16, -15}, {65536, 16}, {65535, 65535}};
  for (const auto& [width, height] : sizes)
    for (const int bits : {8, 24, 32}) Expect_In(complaint(Bmp(width, height, bits, "", "")), "a frame has ");
  Expect_In(complaint("P6 99999999999999999999 16 255\n"), "too large");
  Expect_In(complaint("P6 16 16 65535\n"), "0 to 255");
  for (const int bits : {4, 8}) Expect_In(complaint(Bmp(16, 16, bits, "", std::string(999, 0), bits == 8)), "8, 24 or 32");
  std::string huge = jpeg;
  huge.replace(163, 4, std::string("\x80\0\x80\0", 4));
  Expect_In(complaint(huge), "32768x32768 is too large");
}

TEST_F(MakeTest, FailuresLeaveNothingBehind) {
  Write("good.ppm", Noise_Ppm(320, 240));
  Write("bad.ppm", "P6 640 480 255\nno more");
  Write("old", "old");
  Expect_Failure("make . -o new", ". is a directory");
  Expect_Failure("make bad.ppm -o new", "bad.ppm: the file ends inside the picture");
  Expect_Failure("make out -o new", "out: the file is empty");
  Expect_Failure("make " + sample + " -o new", "not a BMP, PPM or JPEG picture");
  Expect_Failure("make good.ppm -o nowhere/new", "can't write nowhere/new: No such file or directory");
  Expect_Failure("make good.ppm -o .", "can't write .: it is a directory");
  Expect_Failure("make good.ppm bad.ppm -o old", "bad.ppm: the file ends");
  Expect_Failure("make good.ppm -o old --text " + std::string(600, 'x'),
                 "good.ppm: the text has 600 bytes, a picture of 320x240 carries 149");
  Expect_Failure("make good.ppm -o old --quality 100", "a compact frame has at most 65547 bytes");
  Expect_Failure("make good.ppm -o /dev/full", "can't write /dev/full: No space left on device");
  Expect_Failure("make good.ppm -o - >/dev/full", "can't write the output: No space left on device");
  Expect_Failure("make good.ppm -o old --repeat 9", "can't write old: File too large", 1,
                 "trap '' XFSZ; ulimit -f 100; " VELARTO_TOOL_PATH);
  EXPECT_EQ(Held("old").size(), 3u);
  EXPECT_EQ(Pictures(), std::vector<std::string>({"bad.ppm", "good.ppm", "old"}));
  EXPECT_EQ(fs::status("/dev/full").type(), fs::file_type::character);
}

}  // namespace
