#include "apps/velarto/jpeg.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>

// libjpeg's headers want stdio's.
#include <jerror.h>
#include <jpeglib.h>

/** A progressive image may have any number of scans, and each takes the time of a whole picture. */
static constexpr int MostScans = 500;

/** libjpeg leaves by a jump on an error: between a setjmp and the calls after it there must be no object to destroy. */
struct JpegFailure {
  jpeg_error_mgr manager;  ///< First: libjpeg knows the record by this member.
  std::jmp_buf escape;
  char text[JMSG_LENGTH_MAX];
  bool damaged;  ///< A warning about the picture's data was given; `text` is the first one.
};

static void Leave(j_common_ptr info) {
  auto* const failure = reinterpret_cast<JpegFailure*>(info->err);
  if (!failure->damaged) info->err->format_message(info, failure->text);
  std::longjmp(failure->escape, 1);
}

/** Keeps the first warning; libjpeg continues with grey or with a guess. */
static void Note(j_common_ptr info, int level) {
  auto* const failure = reinterpret_cast<JpegFailure*>(info->err);
  if (level >= 0) return;
  ++info->err->num_warnings;
  const int code = info->err->msg_code;
  const bool harmless = code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR || code == JWRN_ADOBE_XFORM;
  if (harmless || failure->damaged) return;
  failure->damaged = true;
  info->err->format_message(info, failure->text);
}

static void Be_Silent(j_common_ptr /*info*/) {}

static jpeg_error_mgr* Failure_Start(JpegFailure* failure) {
  jpeg_error_mgr* const manager = jpeg_std_error(&failure->manager);
  manager->error_exit = Leave;
  manager->emit_message = Note;
  manager->output_message = Be_Silent;
  failure->text[0] = 0;
  failure->damaged = false;
  return manager;
}

struct JpegReader {
  jpeg_decompress_struct info = {};
  jpeg_progress_mgr progress = {};
  JpegFailure failure = {};
  JpegReader() { info.err = Failure_Start(&failure); }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader() { jpeg_destroy_decompress(&info); }
};

static void Count_Scans(j_common_ptr common) {
  auto* const info = reinterpret_cast<j_decompress_ptr>(common);
  auto* const failure = reinterpret_cast<JpegFailure*>(common->err);
  if (info->input_scan_number <= MostScans) return;
  std::snprintf(failure->text, sizeof failure->text, "it has more than %d scans", MostScans);
  std::longjmp(failure->escape, 1);
}

static bool Reader_Start(JpegReader* reader, const uint8_t* bytes, size_t count) {
  if (setjmp(reader->failure.escape)) return false;
  jpeg_create_decompress(&reader->info);
  reader->info.progress = &reader->progress;
  reader->progress.progress_monitor = Count_Scans;
  jpeg_mem_src(&reader->info, bytes, static_cast<unsigned long>(count));
  jpeg_read_header(&reader->info, TRUE);
  reader->info.out_color_space = JCS_EXT_BGR;
  return true;
}

/** Row y, from the top, goes to last - y * pitch. */
static bool Reader_Rows(JpegReader* reader, uint8_t* last, size_t pitch) {
  if (setjmp(reader->failure.escape)) return false;
  jpeg_start_decompress(&reader->info);
  while (reader->info.output_scanline < reader->info.output_height) {
    JSAMPROW row = last - reader->info.output_scanline * pitch;
    jpeg_read_scanlines(&reader->info, &row, 1);
  }
  jpeg_finish_decompress(&reader->info);
  return true;
}

bool Jpeg_Read(std::span<const uint8_t> bytes, Picture* picture, std::string* error) {
  JpegReader reader;
  bool read = Reader_Start(&reader, bytes.data(), bytes.size());
  if (read) {
    if (!Picture_Size_Check(reader.info.image_width, reader.info.image_height, error)) return false;
    Picture_Allot(picture, reader.info.image_width, reader.info.image_height);
    read = Reader_Rows(&reader, Picture_Row(picture, picture->height - 1), static_cast<size_t>(picture->width) * 3);
  }
  if (read && !reader.failure.damaged) return true;
  *error = std::string("the JPEG image is damaged or of an unsupported kind: ") + reader.failure.text;
  return false;
}

bool Jpeg_Sound(std::span<const uint8_t> bytes) {
  JpegReader reader;
  std::string ignored;
  if (!Reader_Start(&reader, bytes.data(), bytes.size()) ||
      !Picture_Size_Check(reader.info.image_width, reader.info.image_height, &ignored)) {
    return false;
  }
  std::vector<uint8_t> row(size_t{3} * reader.info.image_width);
  return Reader_Rows(&reader, row.data(), 0) && reader.failure.manager.num_warnings == 0;
}

struct JpegWriter {
  jpeg_compress_struct info = {};
  JpegFailure failure = {};
  unsigned char* image = nullptr;  ///< Made by libjpeg.
  unsigned long size = 0;
  JpegWriter() { info.err = Failure_Start(&failure); }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;
  ~JpegWriter() {
    jpeg_destroy_compress(&info);
    std::free(image);
  }
};

static bool Writer_Run(JpegWriter* writer, const Picture& picture, int quality) {
  if (setjmp(writer->failure.escape)) return false;
  jpeg_compress_struct* const info = &writer->info;
  jpeg_create_compress(info);
  jpeg_mem_dest(info, &writer->image, &writer->size);
  info->image_width = static_cast<JDIMENSION>(picture.width);
  info->image_height = static_cast<JDIMENSION>(picture.height);
  info->input_components = 3;
  info->in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(info);
  jpeg_set_quality(info, quality, TRUE);
  jpeg_start_compress(info, TRUE);
  while (info->next_scanline < info->image_height) {
    const size_t y = info->image_height - 1 - info->next_scanline;
    // libjpeg takes rows without const, and doesn't change them.
    JSAMPROW row = const_cast<JSAMPROW>(&picture.pixels[y * 3 * info->image_width]);
    jpeg_write_scanlines(info, &row, 1);
  }
  jpeg_finish_compress(info);
  return true;
}

bool Jpeg_Write(const Picture& picture, int32_t quality, std::vector<uint8_t>* bytes, std::string* error) {
  JpegWriter writer;
  if (!Writer_Run(&writer, picture, quality)) {
    *error = std::string("compressing it as JPEG failed: ") + writer.failure.text;
    writer.image = nullptr;  // libjpeg has freed it if growing it failed.
    return false;
  }
  bytes->assign(writer.image, writer.image + writer.size);
  return true;
}
