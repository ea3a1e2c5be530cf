#include "bench/compare/subjects.h"

#include "apps/velarto/camera/scene.h"
#include "apps/velarto/picture_file.h"
#include "apps/velarto/stream.h"

#include <algorithm>
#include <cmath>
#include <cstring>

static constexpr const char *StreetName = "street", *HarbourName = "harbour";
/** Part of a photograph that a picture shows; the view moves in the remainder. */
static constexpr double ShownPart = 0.95;

/** Writes `count` averages of a line of samples, from the position `start` on: each of `length / count` samples, parts of samples
 *  included. Samples lie `step` apart in both lines. */
static void Shrink_Line(const float* from, size_t step, double start, double length, float* to, size_t count) {
  const double width = length / static_cast<double>(count);
  for (size_t i = 0; i < count; ++i) {
    const double left = start + width * static_cast<double>(i), right = left + width;
    double sum = 0;
    for (double at = std::floor(left); at < right; ++at) {
      const double covered = std::min(right, at + 1) - std::max(left, at);
      sum += covered * static_cast<double>(from[static_cast<size_t>(at) * step]);
    }
    to[i * step] = static_cast<float>(sum / width);
  }
}

struct Part {
  double x, y, width, height;
};

/** A part of the picture, scaled. Rows count from the first one in memory. */
static Picture Shrunk(const Picture& picture, const Part& part, int32_t width, int32_t height) {
  const auto fullWidth = static_cast<size_t>(picture.width), fullHeight = static_cast<size_t>(picture.height);
  const auto columns = static_cast<size_t>(width), rows = static_cast<size_t>(height);
  std::vector<float> line(fullWidth * 3), narrow(columns * 3 * fullHeight), column(fullHeight), low(rows);
  for (size_t y = 0; y < fullHeight; ++y) {
    const uint8_t* const row = &picture.pixels[y * fullWidth * 3];
    std::copy_n(row, fullWidth * 3, line.begin());
    for (size_t c = 0; c < 3; ++c) Shrink_Line(&line[c], 3, part.x, part.width, &narrow[y * columns * 3 + c], columns);
  }
  Picture made;
  Picture_Allot(&made, width, height);
  for (size_t i = 0; i < columns * 3; ++i) {
    for (size_t y = 0; y < fullHeight; ++y) column[y] = narrow[y * columns * 3 + i];
    Shrink_Line(column.data(), 1, part.y, part.height, low.data(), rows);
    for (size_t y = 0; y < rows; ++y) made.pixels[y * columns * 3 + i] = static_cast<uint8_t>(std::lround(low[y]));
  }
  return made;
}

/** Picture `number` of `count` while the view moves across the photograph. */
static Picture Photograph_View(const Picture& photograph, int32_t width, int32_t height, size_t number, size_t count) {
  const double scale = ShownPart * std::min(double(photograph.width) / width, double(photograph.height) / height);
  const double place = static_cast<double>(number) / static_cast<double>(std::max<size_t>(count - 1, 1));
  const Part part = {(photograph.width - scale * width) * place, (photograph.height - scale * height) * (1 - place),
                     scale * width, scale * height};
  return Shrunk(photograph, part, width, height);
}

/** A wall of frames of the recording, each from another moment. */
static Picture Street_Wall(const std::vector<Picture>& frames, int32_t width, int32_t height, size_t number) {
  Picture wall;
  Picture_Allot(&wall, width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0, tile = 0; x < width; x += frames[0].width, ++tile) {
      const int32_t tileRow = y / frames[0].height;
      const Picture& frame = frames[(number + static_cast<size_t>(tile * 11 + tileRow * 47)) % frames.size()];
      const auto bytes = static_cast<size_t>(std::min(frame.width, width - x)) * 3;
      const auto row = static_cast<size_t>(frame.height - 1 - y % frame.height);
      std::memcpy(Picture_Row(&wall, height - 1 - y) + x * 3, &frame.pixels[row * static_cast<size_t>(frame.width) * 3], bytes);
    }
  }
  return wall;
}

static std::vector<Picture> Harbour_Views(int32_t width, int32_t height, size_t count) {
  static constexpr std::chrono::seconds Apart(9);
  Scene scene;
  Scene_Start(width, height, &scene);
  std::vector<Picture> views(count);
  for (Picture& view : views) {
    Picture_Allot(&view, width, height);
    Scene_Draw(scene, scene.start + Apart * (1 + (&view - views.data())), &view);
  }
  return views;
}

static bool Read_Street(const std::string& recording, std::vector<Picture>* street, std::string* error) {
  const std::atomic<bool> stop = false;
  DecoderHolder decoder;
  const auto take = [&](const WalkedFrame& frame) {
    if (!Decoder_Fit(&decoder, frame.width, frame.height, error)) return false;
    Picture_Decode(decoder.get(), frame);
    Picture picture;
    Picture_Allot(&picture, frame.width, frame.height);
    std::memcpy(picture.pixels.data(), JDEC_get_decompressed_bitmap(decoder.get()), picture.pixels.size());
    street->push_back(std::move(picture));
    return true;
  };
  FrameWalk walk;
  return Read_Frames(recording, &stop, &walk, take, error) && !street->empty();
}

bool Gallery_Read(const std::vector<std::string>& photographs, const std::string& recording, Gallery* gallery,
                  std::string* error) {
  for (const std::string& named : photographs) {
    const size_t equals = named.find('=');
    Picture picture;
    if (!Picture_Read(named.substr(equals + 1), &picture, error)) return false;
    gallery->photographs.emplace_back(named.substr(0, equals), std::move(picture));
  }
  return Read_Street(recording, &gallery->street, error);
}

std::vector<std::string> Subject_Names(const Gallery& gallery) {
  std::vector<std::string> names;
  for (const auto& [name, picture] : gallery.photographs) names.push_back(name);
  names.insert(names.end(), {StreetName, HarbourName});
  return names;
}

Subject Subject_Make(const Gallery& gallery, const std::string& name, int32_t width, int32_t height, size_t count) {
  if (name == HarbourName) return {name, "rendered", Harbour_Views(width, height, count)};
  Subject subject = {name, name == StreetName ? "rendered" : "photograph", {}};
  for (size_t i = 0; i < count; ++i) {
    if (name == StreetName) subject.pictures.push_back(Street_Wall(gallery.street, width, height, i));
    for (const auto& [known, picture] : gallery.photographs) {
      if (known == name) subject.pictures.push_back(Photograph_View(picture, width, height, i, count));
    }
  }
  return subject;
}
