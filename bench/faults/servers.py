"""HTTP servers with the faults of cameras and proxies, each on its own port and on threads of this process."""

import socket
import threading

HEADER = "HTTP/1.1 200 OK\r\nContent-Type: multipart/x-mixed-replace;boundary=frame\r\n"


def parts(frames, first_boundary=True, length=lambda index, size: size):
    """A multipart body. length: the Content-Length of a part; None for no such line."""
    text = []
    for index, frame in enumerate(frames):
        stated = length(index, len(frame))
        text.append((b"--frame\r\n" if index > 0 or first_boundary else b"") + b"Content-Type: image/jpeg\r\n" +
                    (b"" if stated is None else b"Content-Length: %d\r\n" % stated) + b"\r\n" + frame + b"\r\n")
    return b"".join(text) + b"--frame--\r\n"


def wrong_length(by):
    return lambda index, size: size + by if index % 10 == 9 else size


def response(body, fields=""):
    return [(HEADER + fields + "\r\n").encode() + body]


def chunked(body, size=1000):
    """A response in chunks, which cut frames anywhere."""
    text = (HEADER + "Transfer-Encoding: chunked\r\n\r\n").encode()
    for at in range(0, len(body), size):
        piece = body[at:at + size]
        text += b"%x\r\n%s\r\n" % (len(piece), piece)
    return [text + b"0\r\n\r\n"]


class Server:
    """Gives each connection the next of its answers, and all further ones the last. An answer is a list of bytes. None at its end
    means that the connection goes silent instead of ending."""

    def __init__(self, *answers):
        self.answers = list(answers)
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.address = f"http://127.0.0.1:{self.socket.getsockname()[1]}/stream"
        self.over = threading.Event()
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while not self.over.is_set():
            try:
                client, _ = self.socket.accept()
            except OSError:
                return
            answer = self.answers.pop(0) if len(self.answers) > 1 else self.answers[0]
            threading.Thread(target=self.answer, args=(client, answer), daemon=True).start()

    def answer(self, client, answer):
        with client:
            try:
                client.recv(65536)
                for text in answer:
                    if text is None:
                        self.over.wait()
                        return
                    client.sendall(text)
                client.shutdown(socket.SHUT_WR)
                while client.recv(65536):
                    pass
            except OSError:
                pass  # The client has gone.

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.over.set()
        self.socket.close()
