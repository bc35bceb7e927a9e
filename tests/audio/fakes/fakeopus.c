/* The codec's exported names without a codec behind them. The build leaves some out or lets them refuse. */

void *opus_encoder_create(int rate, int channels, int application, int *error)
{
    (void)rate;
    (void)channels;
    (void)application;
#ifdef EVOX_REFUSES_ENCODER
    *error = -7;
    return 0;
#else
    static int s_encoder;
    *error = 0;
    return &s_encoder;
#endif
}

void opus_encoder_destroy(void *encoder)
{
    (void)encoder;
}

int opus_encoder_ctl(void *encoder, int request, ...)
{
    (void)encoder;
    (void)request;
    return 0;
}

int opus_encode(void *encoder, const short *pcm, int frameSize, unsigned char *data, int maxBytes)
{
    (void)encoder;
    (void)pcm;
    (void)frameSize;
    (void)data;
    (void)maxBytes;
    return -1;
}

void *opus_decoder_create(int rate, int channels, int *error)
{
    (void)rate;
    (void)channels;
#ifdef EVOX_REFUSES_DECODER
    *error = -3;
    return 0;
#else
    static int s_decoder;
    *error = 0;
    return &s_decoder;
#endif
}

void opus_decoder_destroy(void *decoder)
{
    (void)decoder;
}

#ifndef EVOX_WITHOUT_DECODE
int opus_decode(void *decoder, const unsigned char *data, int length, short *pcm, int frameSize, int fec)
{
    (void)decoder;
    (void)data;
    (void)length;
    (void)pcm;
    (void)frameSize;
    (void)fec;
    return -4;
}
#endif

#ifndef EVOX_WITHOUT_STRERROR
const char *opus_strerror(int error)
{
    return error == -7 ? "no memory, says the fake" : "something else, says the fake";
}
#endif
