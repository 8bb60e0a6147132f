/* AMR-NB by the interface of libopencore-amrnb: the decoder. */
#ifndef OPENCORE_AMRNB_INTERF_DEC_H
#define OPENCORE_AMRNB_INTERF_DEC_H

#ifdef __cplusplus
extern "C" {
#endif

/* Null where there is no memory. */
void* Decoder_Interface_init(void);
void Decoder_Interface_exit(void* state);

/* Decodes a frame of the storage format of RFC 4867 to 160 samples. The quality bit counts for nothing; a bfi that is not 0
 * makes the frame a lost one, of which nothing is read. A frame of types 9 to 14 leaves state and samples as they are. */
void Decoder_Interface_Decode(void* state, const unsigned char* in, short* out, int bfi);

#ifdef __cplusplus
}
#endif

#endif
