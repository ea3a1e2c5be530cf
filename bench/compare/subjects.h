/* The pictures that are compared on: photographs, a rendered street and the camera's own scene, at any size. */
#pragma once

#include "apps/velarto/picture.h"

/** One subject at one size: a few pictures of it that differ as frames of a video do, so that no branch is learnt by heart. */
struct Subject {
  std::string name, kind;  ///< Kind: "photograph" or "rendered".
  std::vector<Picture> pictures;
};

/** Where subjects are made of: what the files hold, read once. */
struct Gallery {
  std::vector<std::pair<std::string, Picture>> photographs;  ///< With their names.
  std::vector<Picture> street;                               ///< The frames of the sample recording, 320x240.
};

/** Reads the photographs, "NAME=FILE" each, and the recording. False, with *error. The library must have been started. */
bool Gallery_Read(const std::vector<std::string>& photographs, const std::string& recording, Gallery* gallery,
                  std::string* error);

/** Names of all subjects: the photographs, "street", "harbour". */
std::vector<std::string> Subject_Names(const Gallery& gallery);

/** Makes `count` pictures of a subject; sides of 16 and more, no larger than the photograph but for a tenth. A photograph is
 *  scaled down, each picture being a slightly other part of it; the street is a wall of as many frames as are needed. */
Subject Subject_Make(const Gallery& gallery, const std::string& name, int32_t width, int32_t height, size_t count);
