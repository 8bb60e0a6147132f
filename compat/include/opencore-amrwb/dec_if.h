/* AMR-WB by the interface of libopencore-amrwb: the decoder. */
#ifndef OPENCORE_AMRWB_DEC_IF_H
#define OPENCORE_AMRWB_DEC_IF_H

#ifdef __cplusplus
extern "C" {
#endif

#define _good_frame 0

/* Null where there is no memory. */
void* D_IF_init(void);
void D_IF_exit(void* state);

/* Decodes a frame of the storage format of RFC 4867 to 320 samples. The quality bit counts for nothing; a bfi that is not
 * _good_frame makes the frame a lost one, of which nothing is read, and so does a type that has no bits, but for 15: nothing
 * was sent. */
void D_IF_decode(void* state, const unsigned char* bits, short* synth, int bfi);

#ifdef __cplusplus
}
#endif

#endif
