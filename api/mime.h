/* The type under which a camera's stream is known to browsers and servers. */
#pragma once

constexpr char MimeType[] = "video/x-orvistream";
