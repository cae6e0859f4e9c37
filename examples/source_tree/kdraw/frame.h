const char* frame_name(void);
