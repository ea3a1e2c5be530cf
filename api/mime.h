/* The type under which a camera's stream is known to browsers and servers. */
#pragma once

#include "resources/texts.h"

constexpr char MimeType[] = MIME_TYPE_TEXT;
