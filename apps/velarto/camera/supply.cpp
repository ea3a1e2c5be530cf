#include "apps/velarto/camera/supply.h"

#include "apps/velarto/picture_file.h"
#include "apps/velarto/stream.h"

static constexpr size_t ChunkSize = 65536;

/* ---- Recordings ----------------------------------------------------------------------------------------------------------- */

/** Is the file a stream of frames? A JPEG file can look like one of a single frame: that is a picture. */
static bool Find_Recording(const std::string& name, bool* recording, std::string* error) {
  const std::atomic<bool> stop = false;
  FrameWalk walk;
  bool jpeg = false;
  const auto take = [&](const WalkedFrame& frame) {
    jpeg = frame.number == 0 && frame.offset == 0 && frame.form == FrameForm::Jfif;
    return frame.number == 0;
  };
  if (!Read_Frames(name, &stop, &walk, take, error)) return false;
  *recording = walk.frames > 1 || (walk.frames == 1 && !jpeg);
  return true;
}

static bool Rewind(Supply* supply, std::string* error) {
  Supply_Close(supply);
  supply->walk = {};
  return Source_Open(supply->options.inputs[0], &supply->stop, &supply->source, error);
}

/** Goes to the next frame of the recording; false at its end, with *error if it could not be read. */
static bool Walk_On(Supply* supply, WalkedFrame* frame, std::string* error) {
  std::vector<uint8_t> chunk(ChunkSize);
  while (!Walk_Next(&supply->walk, frame)) {
    if (supply->walk.ended) return false;
    const int64_t count = Source_Read(&supply->source, chunk, error);
    if (count < 0) return false;
    if (count > 0) Walk_Add(&supply->walk, {chunk.data(), static_cast<size_t>(count)});
    if (count == 0) Walk_End(&supply->walk);
  }
  return true;
}

static bool Next_Recorded(Supply* supply, HubFrame* frame, std::string* error) {
  WalkedFrame walked;
  std::string reason;
  bool found = Walk_On(supply, &walked, &reason);
  if (!found && reason.empty()) found = Rewind(supply, error) && Walk_On(supply, &walked, &reason);
  if (!found) {
    if (error->empty()) *error = supply->options.inputs[0] + ": " + (reason.empty() ? "no frame left" : reason);
    return false;
  }
  frame->form = walked.form;
  frame->bytes.assign(walked.bytes.begin(), walked.bytes.end());
  frame->readable = Frame_Decodable(walked);
  return true;
}

/* ---- Pictures and the scene ----------------------------------------------------------------------------------------------- */

static bool Compress(Supply* supply, const Picture& picture, std::vector<uint8_t>* frame, std::string* error) {
  return Decoder_Fit(&supply->decoder, picture.width, picture.height, error) &&
         Frame_Make(supply->decoder.get(), picture, supply->options.style, frame, error);
}

static bool Load_Pictures(Supply* supply, std::string* error) {
  for (const std::string& name : supply->options.inputs) {
    Picture picture;
    if (!Picture_Read(name, &picture, error)) return false;
    picture = Picture_Coded_Part(std::move(picture));
    std::vector<uint8_t> frame;
    if (!Compress(supply, picture, &frame, error)) {
      *error = name + ": " + *error;
      return false;
    }
    supply->pictures.push_back(std::move(frame));
  }
  return true;
}

bool Supply_Open(const SupplyOptions& options, Supply* supply, std::string* error) {
  supply->options = options;
  if (options.inputs.empty()) {
    Scene_Start(options.width, options.height, &supply->scene);
    return true;
  }
  for (const std::string& name : options.inputs) {
    if (!Source_Live(name)) continue;
    *error = name + " is not a file: the camera repeats its input";
    return false;
  }
  if (options.inputs.size() == 1 && !Find_Recording(options.inputs[0], &supply->recorded, error)) return false;
  return supply->recorded ? Rewind(supply, error) : Load_Pictures(supply, error);
}

bool Supply_Next(Supply* supply, HubFrame* frame, std::string* error) {
  if (supply->recorded) return Next_Recorded(supply, frame, error);
  frame->form = supply->options.style.form;
  if (supply->pictures.empty()) {
    Scene_Draw(supply->scene, std::chrono::system_clock::now(), &supply->picture);
    return Compress(supply, supply->picture, &frame->bytes, error);
  }
  frame->bytes = supply->pictures[supply->next];
  supply->next = (supply->next + 1) % supply->pictures.size();
  return true;
}

void Supply_Close(Supply* supply) { Source_Close(&supply->source); }
