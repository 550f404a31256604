/// Hands a file to the host as a browser's form would.

export interface PostAnswer {
  /// HTTP status; 0 when no answer came.
  status: number;
  /// The answer's text: empty, or why the file was not opened.
  text: string;
}

/// Posts a file under a name, and tells on the way which part of it (0 to 1) has left. Never
/// rejects: what went wrong is in the answer.
export function postFile(
  url: string,
  file: Blob,
  name: string,
  progress: (part: number) => void,
): Promise<PostAnswer> {
  const form = new FormData();
  form.append("file", file, name);
  // The one way in which a browser tells how far an upload has come.
  const request = new XMLHttpRequest();
  return new Promise((answered) => {
    request.upload.addEventListener("progress", ({ lengthComputable, loaded, total }) => {
      if (lengthComputable && total > 0) progress(loaded / total);
    });
    request.addEventListener("loadend", () =>
      answered({ status: request.status, text: request.status ? request.responseText.trim() : "" }),
    );
    request.open("POST", url);
    request.send(form);
  });
}
