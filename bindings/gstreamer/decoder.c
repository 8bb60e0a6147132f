/* Decoders: buffers with one payload or several in, speech out. A gap, told by an event or by a jump of the timestamps, is
 * concealed frame by frame, or filled with comfort noise. */
#include "elements.h"

typedef struct {
  GstAudioDecoderClass parent;
  const ElementRow* row;
  const ZppcCodec* codec;
} DecoderClass;

typedef struct {
  GstAudioDecoder parent;
  ZppcOptions options;
  GstPadChainFunction chain; /* the base class's */
  GstClockTime next;         /* where the last buffer or gap ended */
  gboolean lost;             /* of a gap: sent, but not received */
  gboolean pausing;          /* the last payload was a silence descriptor */
  void* memory;
  gsize bytes;
  ZppcDecoder* stream;
} Decoder;

enum { PROP_0, PROP_DTX, PROP_VARIANT };
enum { kMostDescriptorOctets = 6 }; /* speech has more, but for samples */

static const DecoderClass* classOf(gpointer object) { return G_TYPE_INSTANCE_GET_CLASS(object, 0, DecoderClass); }

static gboolean restart(Decoder* self) {
  const ZppcCodec* const codec = classOf(self)->codec;
  int error = 0;
  self->stream = zppcDecoderInit(self->memory, self->bytes, codec, &self->options, &error);
  self->next = GST_CLOCK_TIME_NONE;
  self->pausing = FALSE;
  if (self->stream == NULL) GST_ELEMENT_ERROR(self, LIBRARY, SETTINGS, ("%s: %s", codec->name, zppcErrorText(error)), (NULL));
  return self->stream != NULL;
}

static gboolean start(GstAudioDecoder* decoder) {
  Decoder* const self = (Decoder*)decoder;
  self->bytes = (gsize)zppcDecoderSize(classOf(self)->codec);
  self->memory = g_malloc(self->bytes);
  gst_audio_decoder_set_plc_aware(decoder, TRUE); /* the base class forgets it when it stops */
  return TRUE;
}

static gboolean stop(GstAudioDecoder* decoder) {
  Decoder* const self = (Decoder*)decoder;
  g_clear_pointer(&self->memory, g_free);
  self->stream = NULL;
  return TRUE;
}

static gboolean setFormat(GstAudioDecoder* decoder, GstCaps* caps) {
  Decoder* const self = (Decoder*)decoder;
  const DecoderClass* const klass = classOf(self);
  self->options.bitRate = klass->codec->defaultBitRate;
  if (klass->row->rateInCaps) (void)gst_structure_get_int(gst_caps_get_structure(caps, 0), "bitrate", &self->options.bitRate);
  if (!restart(self)) return FALSE;
  GstAudioInfo info;
  gst_audio_info_set_format(&info, GST_AUDIO_FORMAT_S16, klass->codec->sampleRate, 1, NULL);
  return gst_audio_decoder_set_output_format(decoder, &info);
}

static GstClockTime durationOf(const ZppcCodec* codec, int samples) {
  return gst_util_uint64_scale((guint64)samples, GST_SECOND, (guint64)codec->sampleRate);
}

static GstFlowReturn finish(Decoder* self, GstBuffer* out, int samples) {
  gst_buffer_set_size(out, 2 * (gssize)samples);
  return gst_audio_decoder_finish_frame(GST_AUDIO_DECODER(self), out, 1);
}

/* Fills a gap with as many frames as it is long. */
static GstFlowReturn fill(Decoder* self, GstClockTime duration) {
  const ZppcCodec* const codec = classOf(self)->codec;
  const gboolean sampleBased = (codec->features & ZPPC_FEATURE_SAMPLE_BASED) != 0;
  const GstClockTime frame = durationOf(codec, codec->frameSamples);
  if (!GST_CLOCK_TIME_IS_VALID(duration)) duration = frame;
  const int frames = (int)((MIN(duration, 60 * GST_SECOND) + frame / 2) / frame);
  if (frames == 0) return GST_FLOW_OK;
  const int samples = frames * codec->frameSamples, step = sampleBased ? samples : codec->frameSamples;
  GstBuffer* const out = gst_audio_decoder_allocate_output_buffer(GST_AUDIO_DECODER(self), 2 * (gsize)samples);
  GstMapInfo pcm;
  gst_buffer_map(out, &pcm, GST_MAP_WRITE);
  for (int at = 0; at < samples; at += step)
    (void)zppcDecode(self->stream, self->lost ? NULL : pcm.data, 0, (gint16*)pcm.data + at, step);
  gst_buffer_unmap(out, &pcm);
  return finish(self, out, samples);
}

static GstFlowReturn handleFrame(GstAudioDecoder* decoder, GstBuffer* buffer) {
  Decoder* const self = (Decoder*)decoder;
  const ZppcCodec* const codec = classOf(self)->codec;
  if (buffer == NULL) return GST_FLOW_OK; /* nothing waits here */
  if (gst_buffer_get_size(buffer) == 0) return fill(self, GST_BUFFER_DURATION(buffer));

  GstMapInfo payload, pcm;
  if (!gst_buffer_map(buffer, &payload, GST_MAP_READ)) return GST_FLOW_ERROR;
  /* No payload of a frame has fewer octets than one, no sample fewer bits than two; a frame is what broken octets give. */
  const int most = (int)payload.size * (codec->features & ZPPC_FEATURE_SAMPLE_BASED ? 4 : codec->frameSamples);
  const int capacity = MAX(most, codec->frameSamples);
  GstBuffer* const out = gst_audio_decoder_allocate_output_buffer(decoder, 2 * (gsize)capacity);
  gst_buffer_map(out, &pcm, GST_MAP_WRITE);
  gint16* const speech = (gint16*)pcm.data;
  int samples = 0;
  for (int at = 0, octets; at < (int)payload.size; at += octets) {
    octets = zppc_frame_octets(codec, self->options.bitRate, payload.data + at, (int)payload.size - at);
    int decoded = ZPPC_ERROR_SIZE;
    self->pausing = octets <= kMostDescriptorOctets;
    if (octets > 0) decoded = zppcDecode(self->stream, payload.data + at, octets, speech + samples, capacity - samples);
    if (decoded < 0) {
      GST_WARNING_OBJECT(self, "%s; taken for a lost frame", zppcErrorText(decoded));
      decoded = zppcDecode(self->stream, NULL, 0, speech + samples, codec->frameSamples);
      if (octets == 0) octets = (int)payload.size - at;
    }
    samples += decoded;
  }
  gst_buffer_unmap(out, &pcm);
  gst_buffer_unmap(buffer, &payload);
  if (GST_BUFFER_PTS_IS_VALID(buffer)) self->next = GST_BUFFER_PTS(buffer) + durationOf(codec, samples);
  return finish(self, out, samples);
}

static gboolean sinkEvent(GstAudioDecoder* decoder, GstEvent* event) {
  Decoder* const self = (Decoder*)decoder;
  if (GST_EVENT_TYPE(event) == GST_EVENT_GAP) {
    GstClockTime from, duration;
    GstGapFlags flags;
    gst_event_parse_gap(event, &from, &duration);
    gst_event_parse_gap_flags(event, &flags);
    self->lost = (flags & GST_GAP_FLAG_MISSING_DATA) != 0;
    self->next = GST_CLOCK_TIME_IS_VALID(duration) ? from + duration : GST_CLOCK_TIME_NONE;
  } else if (GST_EVENT_TYPE(event) == GST_EVENT_SEGMENT) {
    self->next = GST_CLOCK_TIME_NONE;
  }
  return GST_AUDIO_DECODER_CLASS(g_type_class_peek(GST_TYPE_AUDIO_DECODER))->sink_event(decoder, event);
}

/* In pauses, RTP senders in discontinuous transmission leave no gap in the packets' numbers: only their timestamps jump. */
static GstFlowReturn chain(GstPad* pad, GstObject* parent, GstBuffer* buffer) {
  Decoder* const self = (Decoder*)parent;
  const ZppcCodec* const codec = classOf(self)->codec;
  const GstClockTime pts = GST_BUFFER_PTS(buffer);
  if (codec->features & ZPPC_FEATURE_DTX && self->stream != NULL && self->pausing && GST_CLOCK_TIME_IS_VALID(pts) &&
      GST_CLOCK_TIME_IS_VALID(self->next) && pts >= self->next + durationOf(codec, codec->frameSamples) / 2) {
    GST_DEBUG_OBJECT(self, "nothing was sent until %" GST_TIME_FORMAT, GST_TIME_ARGS(pts));
    (void)sinkEvent(GST_AUDIO_DECODER(self), gst_event_new_gap(self->next, pts - self->next));
  }
  return self->chain(pad, parent, buffer);
}

static void flush(GstAudioDecoder* decoder, gboolean hard) {
  Decoder* const self = (Decoder*)decoder;
  /* A soft flush follows each discontinuity, which a lost packet is. */
  if (hard && self->stream != NULL) (void)restart(self);
}

static void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) {
  Decoder* const self = (Decoder*)object;
  if (id == PROP_DTX)
    self->options.dtx = g_value_get_boolean(value);
  else if (id == PROP_VARIANT)
    self->options.variant = g_value_get_int(value);
  else
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
}

static void getProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) {
  Decoder* const self = (Decoder*)object;
  if (id == PROP_DTX)
    g_value_set_boolean(value, self->options.dtx);
  else if (id == PROP_VARIANT)
    g_value_set_int(value, self->options.variant);
  else
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
}

static void classInit(gpointer data, gpointer rowData) {
  DecoderClass* const klass = data;
  const ElementRow* const row = rowData;
  const ZppcCodec* const codec = zppcFindCodec(row->codec);
  klass->row = row;
  klass->codec = codec;

  GObjectClass* const object = G_OBJECT_CLASS(klass);
  object->set_property = setProperty;
  object->get_property = getProperty;
  const GParamFlags flags = G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_READY;
  if (codec->features & ZPPC_FEATURE_DTX)
    g_object_class_install_property(
        object, PROP_DTX,
        g_param_spec_boolean("dtx", "DTX", "Look for silence descriptors that look like speech (GSM full rate)", FALSE, flags));
  g_object_class_install_property(
      object, PROP_VARIANT,
      g_param_spec_int("variant", "Variant", "A choice of the codec's own, see zppcodecs.h", 0, 8, row->variant, flags));

  zppc_add_templates(GST_ELEMENT_CLASS(klass), row, GST_PAD_SINK, GST_PAD_SRC);
  char* const name = g_strdup_printf("%s decoder", codec->standard);
  gst_element_class_set_metadata(GST_ELEMENT_CLASS(klass), name, "Codec/Decoder/Audio", name, "zppsc");
  g_free(name);

  GstAudioDecoderClass* const base = GST_AUDIO_DECODER_CLASS(klass);
  base->start = start;
  base->stop = stop;
  base->set_format = setFormat;
  base->handle_frame = handleFrame;
  base->sink_event = sinkEvent;
  base->flush = flush;
}

static void init(GTypeInstance* instance, gpointer klass) {
  Decoder* const self = (Decoder*)instance;
  GstAudioDecoder* const decoder = GST_AUDIO_DECODER(instance);
  GstPad* const sink = GST_AUDIO_DECODER_SINK_PAD(decoder);
  self->options.variant = ((DecoderClass*)klass)->row->variant;
  self->next = GST_CLOCK_TIME_NONE;
  self->chain = GST_PAD_CHAINFUNC(sink);
  gst_pad_set_chain_function(sink, chain);
  gst_audio_decoder_set_needs_format(decoder, TRUE);
  gst_audio_decoder_set_plc(decoder, TRUE);
}

GType zppc_decoder_register(const ElementRow* row) {
  const GTypeInfo info = {.class_size = sizeof(DecoderClass),
                          .class_init = classInit,
                          .class_data = row,
                          .instance_size = sizeof(Decoder),
                          .instance_init = init};
  char* const name = g_strdup_printf("Zppc-%s-decoder", row->element);
  const GType type = g_type_register_static(GST_TYPE_AUDIO_DECODER, name, &info, 0);
  g_free(name);
  return type;
}
