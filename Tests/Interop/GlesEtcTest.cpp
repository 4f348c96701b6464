// Our ETC decoder against that of a software OpenGL ES 3 driver, bit for bit, over blocks at random. Skipped where no context without a
// window can be had.

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl3.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "ETCCodec.h"

namespace
{
/// A current OpenGL ES 3 context without any surface, if the machine has one.
class CContext
{
public:
	CContext()
	{
		setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1); // graphics hardware may decode the 11-bit formats with less precision
		const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
		if (getDisplay == nullptr)
		{
			return;
		}
		m_display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
		if (m_display == EGL_NO_DISPLAY || eglInitialize(m_display, nullptr, nullptr) == EGL_FALSE ||
		    eglBindAPI(EGL_OPENGL_ES_API) == EGL_FALSE)
		{
			return;
		}
		const EGLint configAttributes[] = {EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT, EGL_NONE};
		const EGLint contextAttributes[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
		EGLConfig config = nullptr;
		EGLint count = 0;
		if (eglChooseConfig(m_display, configAttributes, &config, 1, &count) == EGL_FALSE || count == 0)
		{
			return;
		}
		m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, contextAttributes);
		m_current = m_context != EGL_NO_CONTEXT && eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context) != EGL_FALSE;
	}

	~CContext()
	{
		if (m_display != EGL_NO_DISPLAY)
		{
			eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
			if (m_context != EGL_NO_CONTEXT)
			{
				eglDestroyContext(m_display, m_context);
			}
			eglTerminate(m_display);
		}
	}

	CContext(const CContext&) = delete;
	CContext& operator=(const CContext&) = delete;

	bool isCurrent() const
	{
		return m_current;
	}

private:
	EGLDisplay m_display = EGL_NO_DISPLAY;
	EGLContext m_context = EGL_NO_CONTEXT;
	bool m_current = false;
};

struct FormatCase
{
	const char* name;
	unsigned int format;
	bool isSigned;
	GLenum glFormat;
	unsigned int blockBytes;
	unsigned int channels;
	int top; ///< what the driver shows as 1.0
};

const FormatCase kFormats[] = {
    {"ETC2 RGB", ePF_ETC2_RGB, false, GL_COMPRESSED_RGB8_ETC2, 8, 3, 255},
    {"ETC2 RGB with one-bit alpha", ePF_ETC2_RGB_A1, false, GL_COMPRESSED_RGB8_PUNCHTHROUGH_ALPHA1_ETC2, 8, 4, 255},
    {"ETC2 RGBA", ePF_ETC2_RGBA, false, GL_COMPRESSED_RGBA8_ETC2_EAC, 16, 4, 255},
    {"EAC R11", ePF_EAC_R11, false, GL_COMPRESSED_R11_EAC, 8, 1, 65535},
    {"EAC R11 signed", ePF_EAC_R11, true, GL_COMPRESSED_SIGNED_R11_EAC, 8, 1, 32767},
    {"EAC RG11", ePF_EAC_RG11, false, GL_COMPRESSED_RG11_EAC, 16, 2, 65535},
    {"EAC RG11 signed", ePF_EAC_RG11, true, GL_COMPRESSED_SIGNED_RG11_EAC, 16, 2, 32767}};

GLuint compile(GLenum stage, const char* source)
{
	const GLuint shader = glCreateShader(stage);
	glShaderSource(shader, 1, &source, nullptr);
	glCompileShader(shader);
	return shader;
}

/// Draws texels to integers, each scaled by what stands for 1.0.
GLuint makeProgram()
{
	const GLuint program = glCreateProgram();
	glAttachShader(program, compile(GL_VERTEX_SHADER, R"(#version 300 es
		void main()
		{
			gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0);
		})"));
	glAttachShader(program, compile(GL_FRAGMENT_SHADER, R"(#version 300 es
		precision highp float;
		precision highp int;
		uniform highp sampler2D image;
		uniform float top;
		out ivec4 texel;
		void main()
		{
			texel = ivec4(round(texelFetch(image, ivec2(gl_FragCoord.xy), 0) * top));
		})"));
	glLinkProgram(program);
	GLint linked = 0;
	glGetProgramiv(program, GL_LINK_STATUS, &linked);
	return linked == GL_TRUE ? program : 0;
}

/// The image as the driver decodes it, four integers a texel; empty if it refused anything.
std::vector<GLint> decodeByDriver(const FormatCase& format, const std::vector<unsigned char>& blocks, unsigned int width,
                                  unsigned int height)
{
	const auto w = static_cast<GLsizei>(width);
	const auto h = static_cast<GLsizei>(height);
	GLuint textures[2];
	glGenTextures(2, textures);
	glBindTexture(GL_TEXTURE_2D, textures[1]);
	glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA32I, w, h);
	GLuint framebuffer = 0;
	glGenFramebuffers(1, &framebuffer);
	glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
	glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, textures[1], 0);

	glBindTexture(GL_TEXTURE_2D, textures[0]);
	glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
	glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
	glCompressedTexImage2D(GL_TEXTURE_2D, 0, format.glFormat, w, h, 0, static_cast<GLsizei>(blocks.size()), blocks.data());

	const GLuint program = makeProgram();
	glUseProgram(program);
	glUniform1f(glGetUniformLocation(program, "top"), static_cast<GLfloat>(format.top));
	glViewport(0, 0, w, h);
	glDrawArrays(GL_TRIANGLES, 0, 3);
	std::vector<GLint> texels(static_cast<std::size_t>(width) * height * 4);
	glReadPixels(0, 0, w, h, GL_RGBA_INTEGER, GL_INT, texels.data());
	const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
	const bool fine = program != 0 && complete && glGetError() == GL_NO_ERROR;
	glDeleteProgram(program);
	glDeleteFramebuffers(1, &framebuffer);
	glDeleteTextures(2, textures);
	return fine ? texels : std::vector<GLint>();
}

TEST(GlesEtc, DecodesRandomBlocksLikeTheDriver)
{
	const CContext context;
	if (!context.isCurrent())
	{
		GTEST_SKIP() << "no OpenGL ES 3 context without a window";
	}
	constexpr unsigned int kWidth = 253; // cuts the last block of every row, and the last row
	constexpr unsigned int kHeight = 254;
	std::mt19937 random(41);
	for (const FormatCase& format : kFormats)
	{
		SCOPED_TRACE(format.name);
		std::vector<unsigned char> blocks(std::size_t{64} * 64 * format.blockBytes);
		for (unsigned char& byte : blocks)
		{
			byte = static_cast<unsigned char>(random());
		}
		const std::vector<GLint> expected = decodeByDriver(format, blocks, kWidth, kHeight);
		ASSERT_FALSE(expected.empty()) << "the driver refused the texture or the drawing";

		std::vector<unsigned char> bytes(std::size_t{kWidth} * kHeight * 4);
		ASSERT_NE(zortexture::ETCDecompress(blocks.data(), bytes.data(), kWidth, kHeight, format.format, format.isSigned), 0U);
		for (std::size_t i = 0; i < std::size_t{kWidth} * kHeight * format.channels; ++i)
		{
			int value = bytes[i];
			if (format.top != 255)
			{
				const unsigned int pattern = bytes[2 * i] | (bytes[2 * i + 1] << 8U);
				value = format.isSigned ? static_cast<std::int16_t>(pattern) : static_cast<int>(pattern);
			}
			ASSERT_EQ(value, expected[i / format.channels * 4 + i % format.channels]) << "value " << i;
		}
	}
}
} // namespace
