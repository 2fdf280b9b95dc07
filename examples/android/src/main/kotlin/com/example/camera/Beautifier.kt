package com.example.camera

import android.graphics.ImageFormat
import android.media.Image
import java.io.Closeable
import java.io.File
import java.nio.ByteBuffer

/**
 * Beautifies camera frames. Not thread-safe, and more: the OpenGL ES context lives on the thread of the first
 * [process], so call everything on one thread, such as the executor that a camera's image reader calls.
 */
class Beautifier : Closeable {
    private var handle = nativeCreate()
    private var frame: ByteBuffer = ByteBuffer.allocateDirect(0)

    /** [smoothing] and [whitening] from 0 to 1, from the next frame on; both 0 switches beautifying off. */
    fun setBeauty(smoothing: Float, whitening: Float) = nativeSetBeauty(open(), smoothing, whitening)

    /** Grades with the table in [file]; the first file stays, later calls change the [intensity] (0 to 1) alone. */
    fun setLut(file: File, intensity: Float) = nativeSetLut(open(), file.absolutePath.toByteArray(), intensity)

    /**
     * The beautified [image] as NV12 without padding, or null when it could not be made; the log says why. The
     * buffer is overwritten by the next call. [image] may be closed as soon as this returns.
     */
    fun process(image: Image): ByteBuffer? {
        require(image.format == ImageFormat.YUV_420_888) { "the image is not YUV_420_888" }
        val size = image.width * image.height + (image.width + 1) / 2 * 2 * ((image.height + 1) / 2)
        if (frame.capacity() != size) frame = ByteBuffer.allocateDirect(size)
        val (y, u, v) = image.planes
        val done = nativeRender(
            open(), y.buffer, y.rowStride, u.buffer, u.rowStride, u.pixelStride,
            v.buffer, v.rowStride, v.pixelStride, image.width, image.height, frame
        )
        return if (done) frame.apply { rewind() } else null
    }

    /** Frees the native half; on the thread that called [process]. */
    override fun close() {
        if (handle != 0L) nativeDestroy(handle)
        handle = 0L
    }

    private fun open() = handle.also { check(it != 0L) { "the beautifier is closed" } }

    private companion object {
        init {
            System.loadLibrary("beautifier")
        }

        @JvmStatic external fun nativeCreate(): Long
        @JvmStatic external fun nativeDestroy(handle: Long)
        @JvmStatic external fun nativeSetBeauty(handle: Long, smoothing: Float, whitening: Float)
        @JvmStatic external fun nativeSetLut(handle: Long, path: ByteArray, intensity: Float)
        @JvmStatic external fun nativeRender(
            handle: Long,
            y: ByteBuffer, yRowStride: Int,
            u: ByteBuffer, uRowStride: Int, uPixelStride: Int,
            v: ByteBuffer, vRowStride: Int, vPixelStride: Int,
            width: Int, height: Int, nv12: ByteBuffer
        ): Boolean
    }
}
