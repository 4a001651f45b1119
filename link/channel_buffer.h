// The size of the buffers for the CUPS side channel and back channel.
//
// Every side-channel request (the bidirectional probe, each drain) and every
// reply gathered from the back channel uses a buffer of this many bytes: room
// for a side-channel answer and for the largest reply the printer sends.

#ifndef QUILLAROTH_LINK_CHANNEL_BUFFER_H_
#define QUILLAROTH_LINK_CHANNEL_BUFFER_H_

constexpr int kChannelBufferSize = 512;

#endif  // QUILLAROTH_LINK_CHANNEL_BUFFER_H_
