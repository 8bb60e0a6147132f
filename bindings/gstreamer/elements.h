/* GStreamer elements for the codecs of zppcodecs: an encoder and a decoder for each row of its table, made from that row and
 * from what GStreamer calls its payloads. */
#ifndef ZPPC_GSTREAMER_ELEMENTS_H
#define ZPPC_GSTREAMER_ELEMENTS_H

#include <gst/audio/audio.h>
#include <gst/gst.h>

#include "zppcodecs.h"

GST_DEBUG_CATEGORY_EXTERN(zppc_debug);
#define GST_CAT_DEFAULT zppc_debug

typedef struct {
  const char* codec;   /* row of the table */
  const char* element; /* part of the elements' names */
  const char* caps;    /* of the payloads, without rate and channels */
  gboolean rateInCaps; /* payloads do not tell their bit rate: a field of the caps does */
  int variant;         /* of zppcodecs, unless the property says otherwise */
} ElementRow;

GType zppc_encoder_register(const ElementRow* row);
GType zppc_decoder_register(const ElementRow* row);

/* Adds the pad templates: payloads and speech, on the sides that the directions name. */
void zppc_add_templates(GstElementClass* klass, const ElementRow* row, GstPadDirection payloads, GstPadDirection speech);
GstCaps* zppc_payload_caps(const ElementRow* row, int bitRate);

/* Octets of the first frame among so many of a buffer that holds whole payloads; 0 where none begins */
int zppc_frame_octets(const ZppcCodec* codec, int bitRate, const guint8* data, int octets);

#endif
