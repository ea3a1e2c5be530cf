/* The pictures of the comparison: photographs, a rendered street and the camera's own scene, at any size. */
#pragma once

#include "apps/velarto/picture.h"

/** One subject at one size: a few pictures that differ like frames of a video, so that no branch is learnt by the processor. */
struct Subject {
  std::string name, kind;  ///< Kind: "photograph" or "rendered".
  std::vector<Picture> pictures;
};

/** What subjects are made of: the pictures of the files, read once. */
struct Gallery {
  std::vector<std::pair<std::string, Picture>> photographs;  ///< With their names.
  std::vector<Picture> street;                               ///< The frames of the sample recording, 320x240.
};

/** Reads the photographs, each as "NAME=FILE", and the recording. False on failure, with *error. JDEC_Init comes first. */
bool Gallery_Read(const std::vector<std::string>& photographs, const std::string& recording, Gallery* gallery,
                  std::string* error);

/** Names of all subjects: the photographs, "street", "harbour". */
std::vector<std::string> Subject_Names(const Gallery& gallery);

/** Makes `count` pictures of a subject. Sides are at least 16, and at most nine tenths of the photograph's. Each picture is
 * another part of the photograph, scaled down; the street is a wall of as many frames as are needed. */
Subject Subject_Make(const Gallery& gallery, const std::string& name, int32_t width, int32_t height, size_t count);
